// The base types of the library boundary: what every interface header of the suite builds on.
//
// A host includes these headers with any C++20 compiler; no Windows header is needed. On Windows every type here has
// the layout of the system type named in its comment, so pointers to them may be passed to Windows functions as they
// are.
//
// Passing rules of every interface: 32-bit and 64-bit numbers, Booleans, enumerations and byte sets come back as the
// function result. Strings, interfaces, dates, variants and two-word event handlers come back through a last pointer
// argument, which is always written, also on failure (with null, zero or an empty variant). Text arguments are
// NUL-terminated UTF-16; null stands for the empty text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#if defined(_WIN32)
#define VARCOLIN_CALL __stdcall
#else
#define VARCOLIN_CALL
#endif

namespace varcolin {

/// A result code as COM defines it: negative for failures (Windows: HRESULT).
using TResultCode = std::int32_t;
inline constexpr TResultCode ResultOk = 0;
inline constexpr TResultCode ResultNoInterface = static_cast<TResultCode>(0x80004002U);
inline constexpr TResultCode ResultNotImplemented = static_cast<TResultCode>(0x80004001U);
inline constexpr TResultCode ResultInvalidPointer = static_cast<TResultCode>(0x80004003U);

/// Days since 1899-12-30 00:00, the time of day as the fraction (Windows: DATE). 0 stands for an unknown date.
using TDateTime = double;

/// An unsigned integer of pointer size, large enough for any Windows handle.
using TNativeUInt = std::uintptr_t;

/// A globally unique identifier (Windows: GUID).
struct TGUID {
  std::uint32_t D1;
  std::uint16_t D2;
  std::uint16_t D3;
  std::uint8_t D4[8];

  friend constexpr bool operator==(const TGUID&, const TGUID&) = default;
};

/// A text allocated by OLE: NUL-terminated UTF-16 whose length stands before its first unit (Windows: BSTR).
/// Null is the empty text. Whoever receives one owns it and gives it back with FreeOleString.
using TOleString = char16_t*;

/// Allocates an OLE string with a copy of AText; embedded NULs are kept. Null when memory is exhausted.
/// Any thread. Windows: SysAllocStringLen.
[[nodiscard]] TOleString AllocOleString(std::u16string_view AText) noexcept;

/// Gives an OLE string back; null is allowed. Any thread. Windows: SysFreeString.
void FreeOleString(TOleString AText) noexcept;

/// Length of an OLE string in UTF-16 units; 0 for null. Windows: SysStringLen.
[[nodiscard]] std::size_t OleStringLength(const char16_t* AText) noexcept;

/// Kinds of value that a variant holds (Windows: VARENUM).
enum class EVariantType : std::uint16_t {
  Empty = 0,
  Null = 1,
  Int32 = 3,   ///< VT_I4
  Date = 7,    ///< VT_DATE
  String = 8,  ///< VT_BSTR
  Int64 = 20,  ///< VT_I8
};

/// A tagged value (Windows: VARIANT). A plain record, so that it can cross the boundary; ClearVariant gives back what
/// it owns, TVariantValue does so by itself.
struct TOleVariant {
  EVariantType Type = EVariantType::Empty;
  std::uint16_t Reserved1 = 0;
  std::uint16_t Reserved2 = 0;
  std::uint16_t Reserved3 = 0;
  union {
    std::int64_t Int64 = 0;
    std::int32_t Int32;
    TDateTime Date;
    TOleString String;
    void* Pointers[2];  ///< widens the record to the size of the system's
  };
};

/// Frees the string of a string variant and makes the variant empty. Windows: VariantClear (for the kinds above).
inline void ClearVariant(TOleVariant& AValue) noexcept {
  if (AValue.Type == EVariantType::String) FreeOleString(AValue.String);
  AValue = TOleVariant{};
}

/// An event handler as the suite's compilers store it: a code address and the object it is called on.
struct TEventHandler {
  void* Code = nullptr;
  void* Object = nullptr;
};

/// The base of every interface (Windows: IUnknown). Any thread may call its operations.
struct IInterface {
  static constexpr TGUID IID{0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

  /// Writes the requested interface, with a reference of the caller's own, to AObject and returns ResultOk; writes null
  /// and returns ResultNoInterface when the object does not have it, ResultInvalidPointer when AObject is null.
  virtual TResultCode VARCOLIN_CALL QueryInterface(const TGUID& AIID, void** AObject) = 0;
  /// Adds a reference and returns the new count (for information only).
  virtual std::uint32_t VARCOLIN_CALL AddRef() = 0;
  /// Drops a reference and returns the new count; the object is destroyed with the last one.
  virtual std::uint32_t VARCOLIN_CALL Release() = 0;

 protected:
  ~IInterface() = default;
};

/// A list of strings that the host hands in. The list belongs to whoever passed it.
struct IStringList : IInterface {
  static constexpr TGUID IID{0xD1465CA9, 0x77C6, 0x49DF, {0x92, 0x9C, 0x4E, 0x4D, 0x64, 0x73, 0x02, 0x40}};

  /// Number of strings.
  virtual std::int32_t VARCOLIN_CALL GetCount() = 0;
  /// Writes string AIndex (0-based) as an OLE string of the caller's own; null when the index is out of range.
  virtual void VARCOLIN_CALL GetItem(std::int32_t AIndex, TOleString* AResult) = 0;

 protected:
  ~IStringList() = default;
};

/// The one export of the library and of every sibling library of the suite ("GetInstance", undecorated).
/// AGuid: NUL-terminated UTF-16 text of an interface's GUID in registry form with braces. AParam: not used.
/// Returns the interface, or null when the library does not serve it. The pointer carries no reference of the caller's
/// own: add one before keeping it.
using TGetInstance = void*(VARCOLIN_CALL*)(const char16_t* AGuid, std::uint32_t AParam);

/// Owns one reference to an interface.
template <class T>
class TInterfaceRef {
 public:
  TInterfaceRef() noexcept = default;
  TInterfaceRef(std::nullptr_t) noexcept {}
  /// Shares AObject: adds a reference.
  explicit TInterfaceRef(T* AObject) noexcept : FObject(AObject) {
    if (FObject != nullptr) FObject->AddRef();
  }
  TInterfaceRef(const TInterfaceRef& AOther) noexcept : TInterfaceRef(AOther.FObject) {}
  TInterfaceRef(TInterfaceRef&& AOther) noexcept : FObject(std::exchange(AOther.FObject, nullptr)) {}
  TInterfaceRef& operator=(TInterfaceRef AOther) noexcept {
    std::swap(FObject, AOther.FObject);
    return *this;
  }
  ~TInterfaceRef() { Reset(); }

  /// Takes over a reference that the caller already owns.
  [[nodiscard]] static TInterfaceRef Adopt(T* AObject) noexcept {
    TInterfaceRef ref;
    ref.FObject = AObject;
    return ref;
  }
  void Reset() noexcept {
    if (T* object = std::exchange(FObject, nullptr)) object->Release();
  }
  /// Gives the reference to the caller.
  [[nodiscard]] T* Detach() noexcept { return std::exchange(FObject, nullptr); }
  /// Empties the reference and returns where an operation's result argument may write a new one.
  [[nodiscard]] T** Receive() noexcept {
    Reset();
    return &FObject;
  }
  [[nodiscard]] T* Get() const noexcept { return FObject; }
  T* operator->() const noexcept { return FObject; }
  T& operator*() const noexcept { return *FObject; }
  explicit operator bool() const noexcept { return FObject != nullptr; }

 private:
  T* FObject = nullptr;
};

/// Owns one OLE string.
class TOleText {
 public:
  TOleText() noexcept = default;
  explicit TOleText(TOleString AOwned) noexcept : FText(AOwned) {}
  TOleText(TOleText&& AOther) noexcept : FText(std::exchange(AOther.FText, nullptr)) {}
  TOleText& operator=(TOleText&& AOther) noexcept {
    std::swap(FText, AOther.FText);
    return *this;
  }
  ~TOleText() { FreeOleString(FText); }

  /// Empties the text and returns where an operation's result argument may write a new one.
  [[nodiscard]] TOleString* Receive() noexcept {
    FreeOleString(std::exchange(FText, nullptr));
    return &FText;
  }
  [[nodiscard]] std::u16string_view View() const noexcept { return {FText, OleStringLength(FText)}; }

 private:
  TOleString FText = nullptr;
};

/// Owns what a variant holds.
class TVariantValue {
 public:
  TVariantValue() noexcept = default;
  TVariantValue(const TVariantValue&) = delete;
  TVariantValue& operator=(const TVariantValue&) = delete;
  ~TVariantValue() { ClearVariant(FValue); }

  /// Empties the variant and returns where an operation's result argument may write a new one.
  [[nodiscard]] TOleVariant* Receive() noexcept {
    ClearVariant(FValue);
    return &FValue;
  }
  [[nodiscard]] const TOleVariant& Value() const noexcept { return FValue; }

 private:
  TOleVariant FValue;
};

}  // namespace varcolin
