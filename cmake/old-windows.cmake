# Run by ctest: fails when a part of the product imports a function that came after Windows XP, which would keep it from
# loading there. The headers hide such functions from our own code; the compiler's libraries may still bring some.
# Given: OBJDUMP and FOLDER.
set(NEWER "GetTickCount64|.*ConditionVariable.*|.*SRWLock.*|InitOnce.*|InitializeCriticalSectionEx|CreateEventEx[AW]\
|CreateSemaphoreEx[AW]|CreateMutexEx[AW]|Fls[A-Z].*|.*Threadpool.*|GetSystemTimePrecise.*|CreateFile2|CancelIoEx\
|GetFinalPathName.*|.*FileInformationByHandleEx?|CreateSymbolicLink.*|.*Transacted[AW]|CompareString(Ex|Ordinal)\
|LCMapStringEx|GetLocaleInfoEx|GetUserDefaultLocaleName|LocaleNameToLCID|GetProductInfo|QueryFullProcessImageName[AW]\
|Reg(DeleteKeyEx|DeleteTree|GetValue|CopyTree|LoadMUIString)[AW]|SHGet(KnownFolder.*|StockIconInfo)|WerRegister.*\
|(_?[a-z_]+_s|_[a-z]+_s_l|quick_exit|timespec_get)")
file(GLOB FILES ${FOLDER}/*.dll ${FOLDER}/varcolin.exe)
if(NOT FILES)
  message(FATAL_ERROR "nothing is built in ${FOLDER}")
endif()
foreach(FILE ${FILES})
  execute_process(COMMAND ${OBJDUMP} -p ${FILE} OUTPUT_VARIABLE HEADERS COMMAND_ERROR_IS_FATAL ANY)
  # the lines of the import tables: address, ordinal, name
  string(REGEX MATCHALL "\n\t[0-9a-f]+\t +[0-9]+  [A-Za-z0-9_@?]+" IMPORTS "${HEADERS}")
  if(NOT IMPORTS)
    message(SEND_ERROR "${FILE}: no imports found")
  endif()
  string(REGEX MATCHALL "DLL Name: api-ms-[A-Za-z0-9-]+" MODERN "${HEADERS}")
  foreach(IMPORT ${IMPORTS} ${MODERN})
    string(REGEX REPLACE ".* " "" NAME "${IMPORT}")
    if(NAME MATCHES "^(${NEWER}|api-ms-.*)$")
      message(SEND_ERROR "${FILE} imports ${NAME}")
    endif()
  endforeach()
endforeach()
