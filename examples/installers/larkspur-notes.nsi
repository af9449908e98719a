; A small program with a real installer: what the Windows demo and the boundary tests install, list and remove.
; Build it with   makensis -DOUTPUT=larkspur-notes.exe larkspur-notes.nsi
; Install with    larkspur-notes.exe /S

; -DNAME="Another Name" makes the same program under another name

Unicode true
!ifndef NAME
  !define NAME "Larkspur Notes"
!endif
Name "${NAME}"
OutFile "${OUTPUT}"
InstallDir "$PROGRAMFILES32\${NAME}"
RequestExecutionLevel admin
SetCompressor lzma

!define ENTRY "Software\Microsoft\Windows\CurrentVersion\Uninstall\${NAME}"

VIProductVersion "2.4.1.0"
VIAddVersionKey "ProductName" "${NAME}"
VIAddVersionKey "CompanyName" "Larkspur Works"
VIAddVersionKey "FileDescription" "${NAME} Setup"
VIAddVersionKey "FileVersion" "2.4.1"
VIAddVersionKey "LegalCopyright" "Larkspur Works"

Page instfiles
UninstPage instfiles

Section "${NAME}"
  SetOutPath "$INSTDIR"
  File "readme.txt"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  CreateDirectory "$SMPROGRAMS\${NAME}"
  CreateShortcut "$SMPROGRAMS\${NAME}\Read me.lnk" "$INSTDIR\readme.txt"

  WriteRegStr HKLM "${ENTRY}" "DisplayName" "${NAME} 2.4"
  WriteRegStr HKLM "${ENTRY}" "DisplayVersion" "2.4.1"
  WriteRegStr HKLM "${ENTRY}" "Publisher" "Larkspur Works"
  WriteRegStr HKLM "${ENTRY}" "InstallLocation" "$INSTDIR"
  WriteRegStr HKLM "${ENTRY}" "InstallDate" "20120809"
  WriteRegStr HKLM "${ENTRY}" "Comments" "Notes that stay where they are put"
  WriteRegStr HKLM "${ENTRY}" "HelpLink" "http://larkspur.example/help"
  WriteRegStr HKLM "${ENTRY}" "URLInfoAbout" "http://larkspur.example/"
  WriteRegStr HKLM "${ENTRY}" "DisplayIcon" "$INSTDIR\uninstall.exe,0"
  WriteRegStr HKLM "${ENTRY}" "UninstallString" '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKLM "${ENTRY}" "QuietUninstallString" '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKLM "${ENTRY}" "EstimatedSize" 1536
  WriteRegDWORD HKLM "${ENTRY}" "NoModify" 1
  WriteRegDWORD HKLM "${ENTRY}" "NoRepair" 1
SectionEnd

Section "Uninstall"
  Delete "$SMPROGRAMS\${NAME}\Read me.lnk"
  RMDir "$SMPROGRAMS\${NAME}"
  Delete "$INSTDIR\readme.txt"
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR"
  DeleteRegKey HKLM "${ENTRY}"
SectionEnd
