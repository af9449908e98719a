// The one export that only the native library has: by it a host says which machine the library reads.
#pragma once

#include "intf/intf_Base.h"

namespace varcolin {

/// The simulated machine behind the native library, as a host sees it.
struct IMachine : IInterface {
  static constexpr TGUID IID{0xD1465CA9, 0x77C6, 0x49DF, {0x92, 0x9C, 0x4E, 0x4D, 0x64, 0x73, 0x02, 0x41}};

  /// What a sibling library of the suite answers for a GUID text; no reference of the caller's own. Null when there is
  /// no such library or it refuses the GUID.
  virtual void* VARCOLIN_CALL GetSiblingInstance(const char16_t* ALibrary, const char16_t* AGuid) = 0;
  /// Size of a file on the machine's drives in bytes, or -1 when there is none that can be read.
  virtual std::int64_t VARCOLIN_CALL GetSizeOfFile(const char16_t* APath) = 0;
  /// Reads a file's first ASize bytes into ABuffer and returns how many there were.
  virtual std::int64_t VARCOLIN_CALL ReadWholeFile(const char16_t* APath, void* ABuffer, std::int64_t ASize) = 0;

  /// Writes the title of a window of the machine; empty when there is no such window.
  virtual void VARCOLIN_CALL GetTitleOfWindow(TNativeUInt AWindow, TOleString* AResult) = 0;
  /// Writes the text of the oldest message box that was shown and not taken yet; false when there is none.
  virtual bool VARCOLIN_CALL TakeMessage(TOleString* AResult) = 0;

  /// Size of the images of an image list of the library (IProductCollection::GetIconListLarge and its like) in pixels;
  /// false, with zeros, for a value that is no list.
  virtual bool VARCOLIN_CALL GetSizeOfImages(TNativeUInt AImageList, std::int32_t* AWidth, std::int32_t* AHeight) = 0;
  /// Draws image AIndex of an image list into ABuffer, the caller's own, of ASize bytes: row by row from the top, four
  /// bytes a pixel, which are red, green, blue, and how opaque the pixel is (0 to 255, not multiplied into the
  /// colours). False, with the buffer untouched, when there is no such list or image, when the picture in the
  /// machine's file is broken, and when ASize is less than four times width times height.
  virtual bool VARCOLIN_CALL DrawImage(TNativeUInt AImageList, std::int32_t AIndex, void* ABuffer,
                                       std::int64_t ASize) = 0;

 protected:
  ~IMachine() = default;
};

}  // namespace varcolin

/// Chooses the machine and loads the library's modules; the native library's GetInstance does the same with the
/// embedded sample machine when this was not called before. AImageFolder: UTF-8 path of a machine image on the disk of
/// the computer this runs on, null for the embedded sample machine.
///
/// Returns the machine (no reference of the caller's own), or null with *AError set to an OLE string of the caller's
/// own that names the file and the line at fault, also when a machine has been chosen already. One thread, once.
extern "C" varcolin::IMachine* SelectMachine(const char* AImageFolder, varcolin::TOleString* AError);
