// The reader of machine.json.
#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/simulated/Locales.h"
#include "platform/simulated/MachineImage.h"
#include "platform/simulated/SimulatedPaths.h"
#include "support/uDateTime.h"
#include "support/uText.h"

namespace varcolin {
namespace {

// Where the reader is. A line counts from its first unit that is no blank, as the parser looks one unit ahead.
struct TPosition {
  std::size_t Line = 1;
  std::size_t LineBreaks = 0;

  void Pass(char AUnit) noexcept {
    if (AUnit == '\n') {
      ++LineBreaks;
    } else if (AUnit != ' ' && AUnit != '\t' && AUnit != '\r') {
      Line = LineBreaks + 1;
    }
  }
};

class TTrackedIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  TTrackedIterator(const char* AAt, TPosition& APosition) noexcept : FAt(AAt), FPosition(&APosition) {}
  reference operator*() const noexcept { return *FAt; }
  TTrackedIterator& operator++() noexcept {
    FPosition->Pass(*FAt++);
    return *this;
  }
  TTrackedIterator operator++(int) noexcept {
    TTrackedIterator old = *this;
    ++*this;
    return old;
  }
  friend bool operator==(const TTrackedIterator& AFirst, const TTrackedIterator& ASecond) noexcept {
    return AFirst.FAt == ASecond.FAt;
  }

 private:
  const char* FAt;
  TPosition* FPosition;
};

enum class EKind { Null, Bool, Integer, Fraction, String, Array, Object };

// A JSON value that knows its line.
struct TMember;
struct TNode {
  EKind Kind = EKind::Null;
  std::size_t Line = 0;
  bool Bool = false;
  std::int64_t Integer = 0;
  std::string String;
  std::vector<TMember> Members;  // of an object; an array's have no names

  [[nodiscard]] const TNode* Find(std::string_view AName) const noexcept;
};
struct TMember {
  std::string Name;
  TNode Node;
};

const TNode* TNode::Find(std::string_view AName) const noexcept {
  const auto found = std::ranges::find(Members.rbegin(), Members.rend(), AName, &TMember::Name);
  return found == Members.rend() ? nullptr : &found->Node;
}

// Builds the tree from the parser's events. The depth is bounded because the tree is destroyed recursively.
class TTreeBuilder {
 public:
  TTreeBuilder(TPosition& APosition, std::string_view AFileName) noexcept
      : FPosition(APosition), FFileName(AFileName), FOpen{&FTop} {}

  [[nodiscard]] const TNode& Top() const noexcept { return FTop; }

  bool null() { return Add(EKind::Null); }
  bool boolean(bool AValue) {
    Add(EKind::Bool);
    Last().Bool = AValue;
    return true;
  }
  bool number_integer(std::int64_t AValue) {
    Add(EKind::Integer);
    Last().Integer = AValue;
    return true;
  }
  bool number_unsigned(std::uint64_t AValue) {
    constexpr auto Max = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    return number_integer(static_cast<std::int64_t>(std::min(AValue, Max)));
  }
  bool number_float(double, const std::string&) { return Add(EKind::Fraction); }
  bool string(std::string& AValue) {
    Add(EKind::String);
    Last().String = std::move(AValue);
    return true;
  }
  bool binary(std::vector<std::uint8_t>&) { return false; }  // not in JSON texts
  bool start_object(std::size_t) { return Open(EKind::Object); }
  bool start_array(std::size_t) { return Open(EKind::Array); }
  bool end_object() { return Close(); }
  bool end_array() { return Close(); }
  bool key(std::string& AName) {
    FKey = std::move(AName);
    return true;
  }
  bool parse_error(std::size_t, const std::string& AToken, const nlohmann::detail::exception&) {
    constexpr std::size_t MaxShown = 40;
    throw EImageError(FFileName, FPosition.Line,
                      u"the text is no JSON document from \"" + FromUtf8(AToken).substr(0, MaxShown) + u"\" on");
  }

 private:
  bool Add(EKind AKind) {
    TNode& node = FOpen.back()->Members.emplace_back(TMember{std::move(FKey), TNode{}}).Node;
    node.Kind = AKind;
    node.Line = FPosition.Line;
    FKey.clear();
    return true;
  }
  TNode& Last() { return FOpen.back()->Members.back().Node; }
  bool Open(EKind AKind) {
    constexpr std::size_t MaxDepth = 32;
    if (FOpen.size() > MaxDepth) throw EImageError(FFileName, FPosition.Line, u"values are nested too deeply");
    Add(AKind);
    FOpen.push_back(&Last());
    return true;
  }
  bool Close() {
    FOpen.pop_back();
    return true;
  }

  TPosition& FPosition;
  std::string_view FFileName;
  TNode FTop;
  std::vector<TNode*> FOpen;
  std::string FKey;
};

bool IsFullPath(std::u16string_view AText) {
  TResolvedPath path;
  return AText.size() > 3 && AText[1] == u':' && AText[2] == u'\\' &&
         ResolvePath(AText, u"C:\\", false, path) == WinError::Success && !path.Parts.empty();
}

// Typed access to the members of one object; a member that is not there leaves the target as it is.
class TReader {
 public:
  TReader(const TNode& AObject, std::string_view AFileName) : FObject(AObject), FFileName(AFileName) {}

  [[noreturn]] void Fail(const TNode& ANode, std::u16string_view AMessage) const {
    throw EImageError(FFileName, ANode.Line, AMessage);
  }

  [[nodiscard]] const TNode* Find(std::string_view AName, EKind AKind, std::u16string_view AKindText) const {
    const TNode* const node = FObject.Find(AName);
    if (node != nullptr && node->Kind != AKind) {
      Fail(*node, u"\"" + FromUtf8(AName) + u"\" must be " + std::u16string(AKindText));
    }
    return node;
  }
  template <class T>
  void Number(std::string_view AName, T& AValue) const {
    constexpr std::int64_t Max = std::numeric_limits<T>::max();
    const TNode* const node = Find(AName, EKind::Integer, u"a whole number");
    if (node == nullptr) return;
    if (node->Integer < 0 || node->Integer > Max) {
      Fail(*node, u"\"" + FromUtf8(AName) + u"\" must lie between 0 and " + IntToStr(Max));
    }
    AValue = static_cast<T>(node->Integer);
  }
  void Bool(std::string_view AName, bool& AValue) const {
    if (const TNode* const node = Find(AName, EKind::Bool, u"true or false")) AValue = node->Bool;
  }
  // The text of a member; null when it is not there.
  [[nodiscard]] const TNode* Text(std::string_view AName, std::u16string& AValue) const {
    const TNode* const node = Find(AName, EKind::String, u"a text");
    if (node != nullptr) AValue = FromUtf8(node->String);
    return node;
  }
  // A path below a drive's root.
  void Path(const TNode& ANode, const std::u16string& AText) const {
    if (!IsFullPath(AText)) Fail(ANode, u"\"" + AText + u"\" must be the full path of a file or folder");
  }
  // The members of an array; none when it is not there.
  [[nodiscard]] const std::vector<TMember>& Array(std::string_view AName) const {
    static const std::vector<TMember> none;
    const TNode* const node = Find(AName, EKind::Array, u"an array");
    return node != nullptr ? node->Members : none;
  }
  // Calls ATake(reader, element) for each object of an array.
  template <class TTake>
  void Objects(std::string_view AName, TTake ATake) const {
    for (const auto& [name, node] : Array(AName)) {
      if (node.Kind != EKind::Object) Fail(node, u"\"" + FromUtf8(AName) + u"\" must hold objects");
      ATake(TReader(node, FFileName), node);
    }
  }
  // Each text of an array, with its node.
  template <class TTake>
  void Texts(std::string_view AName, TTake ATake) const {
    for (const auto& [name, node] : Array(AName)) {
      if (node.Kind != EKind::String) Fail(node, u"\"" + FromUtf8(AName) + u"\" must hold texts");
      ATake(FromUtf8(node.String), node);
    }
  }
  // Milliseconds that may be missing.
  void Time(std::string_view AName, std::optional<std::uint32_t>& ATime) const {
    if (FObject.Find(AName) != nullptr) Number(AName, ATime.emplace());
  }
  [[nodiscard]] const TNode* Object(std::string_view AName) const { return Find(AName, EKind::Object, u"an object"); }

  template <class T, std::size_t N>
  void Word(std::string_view AName, const std::pair<std::string_view, T> (&AWords)[N], T& AValue) const {
    std::u16string text;
    const TNode* const node = Text(AName, text);
    if (node == nullptr) return;
    std::u16string known;
    for (const auto& [word, value] : AWords) {
      if (node->String == word) {
        AValue = value;
        return;
      }
      known += (known.empty() ? u"\"" : u", \"") + FromUtf8(word) + u"\"";
    }
    Fail(*node, u"\"" + FromUtf8(AName) + u"\" must be one of " + known);
  }

 private:
  const TNode& FObject;
  std::string_view FFileName;
};

// "2012-08-09T10:11:12", a "Z" may follow.
bool TryTextToTime(std::u16string_view AText, TFileTime& ATime) {
  if (AText.ends_with(u'Z')) AText.remove_suffix(1);
  if (AText.size() != 19 || AText[4] != u'-' || AText[7] != u'-' || AText[10] != u'T' || AText[13] != u':' ||
      AText[16] != u':') {
    return false;
  }
  std::uint32_t year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  if (!TryDigitsToInt(AText.substr(0, 4), year) || !TryDigitsToInt(AText.substr(5, 2), month) ||
      !TryDigitsToInt(AText.substr(8, 2), day) || !TryDigitsToInt(AText.substr(11, 2), hour) ||
      !TryDigitsToInt(AText.substr(14, 2), minute) || !TryDigitsToInt(AText.substr(17, 2), second)) {
    return false;
  }
  TSystemTime time;
  time.Year = static_cast<std::uint16_t>(year);
  time.Month = static_cast<std::uint16_t>(month);
  time.Day = static_cast<std::uint16_t>(day);
  time.Hour = static_cast<std::uint16_t>(hour);
  time.Minute = static_cast<std::uint16_t>(minute);
  time.Second = static_cast<std::uint16_t>(second);
  const TFileTime result = SystemTimeToFileTime(time);
  if (result.Ticks == 0) return false;
  ATime = result;
  return true;
}

bool IsSid(std::u16string_view AText) {
  constexpr std::size_t MaxLength = 184;
  return AText.size() <= MaxLength && AText.starts_with(u"S-1-") && !AText.ends_with(u'-') &&
         std::ranges::all_of(AText.substr(4),
                             [](char16_t AUnit) { return AUnit == u'-' || (AUnit >= u'0' && AUnit <= u'9'); });
}

void ReadWindows(const TReader& AReader, TSimulatedFacts& AFacts) {
  static constexpr std::pair<std::string_view, std::uint8_t> ProductTypes[] = {
      {"workstation", ProductType::Workstation},
      {"server", ProductType::Server},
      {"domainController", ProductType::DomainController}};
  static constexpr std::pair<std::string_view, std::uint16_t> Architectures[] = {
      {"x64", Architecture::Amd64}, {"x86", Architecture::Intel}, {"itanium", Architecture::Itanium}};
  TVersionFacts& version = AFacts.Version;
  AReader.Number("major", version.Major);
  AReader.Number("minor", version.Minor);
  AReader.Number("build", version.Build);
  AReader.Word("productType", ProductTypes, version.ProductType);
  std::uint8_t servicePack = static_cast<std::uint8_t>(version.ServicePackMajor);
  AReader.Number("servicePack", servicePack);
  version.ServicePackMajor = servicePack;
  version.ServicePackText = servicePack == 0 ? std::u16string{} : u"Service Pack " + IntToStr(servicePack);
  AReader.Number("suiteMask", version.SuiteMask);
  AReader.Number("productInfo", AFacts.ProductInfo);
  AReader.Word("architecture", Architectures, AFacts.NativeArchitecture);
}

void ReadUser(const TReader& AReader, TSimulatedFacts& AFacts) {
  if (const TNode* const name = AReader.Text("name", AFacts.UserName); name && !IsFileName(AFacts.UserName)) {
    AReader.Fail(*name, u"\"name\" cannot be the name of a user");
  }
  if (const TNode* const sid = AReader.Text("sid", AFacts.UserSid); sid && !IsSid(AFacts.UserSid)) {
    AReader.Fail(*sid, u"\"sid\" is no security identifier (S-1-5-21-...)");
  }
  AReader.Bool("admin", AFacts.UserIsAdmin);
}

void ReadEnvironment(const TNode& AObject, const TReader& AReader, TSimulatedFacts& AFacts) {
  for (const auto& [name, value] : AObject.Members) {
    const std::u16string variable = FromUtf8(name);
    if (variable.empty() || variable.find_first_of(std::u16string_view(u"=\0", 2)) != std::u16string::npos) {
      AReader.Fail(value, u"\"" + variable + u"\" cannot be the name of an environment variable");
    }
    if (value.Kind != EKind::String) AReader.Fail(value, u"\"" + variable + u"\" must be a text");
    std::u16string text = FromUtf8(value.String);
    text.resize(std::min(text.size(), text.find(u'\0')));
    if (SameText(variable, u"SystemRoot") && !IsFullPath(text)) {
      AReader.Fail(value, u"\"" + variable + u"\" must be the full path of a folder");
    }
    AFacts.Environment.insert_or_assign(variable, std::move(text));
  }
}

bool IsKeyPath(std::u16string_view AText) {
  const std::size_t end = AText.find(u'\\');
  if (end == std::u16string_view::npos || end + 1 == AText.size()) return false;
  const std::u16string_view root = AText.substr(0, end);
  return root == u"HKEY_LOCAL_MACHINE" || root == u"HKEY_CURRENT_USER" || root == u"HKEY_CLASSES_ROOT" ||
         root == u"HKEY_USERS";
}

TProgramWindow ReadProgramWindow(const TReader& AReader) {
  TProgramWindow window;
  TSimulatedWindow& shown = window.Window;
  static_cast<void>(AReader.Text("title", shown.Title));
  AReader.Number("after", window.After);
  AReader.Time("closes", window.Closes);
  AReader.Bool("icon", shown.HasIcon);
  AReader.Bool("visible", shown.IsVisible);
  AReader.Bool("minimised", shown.IsMinimised);
  bool isTool = false;
  AReader.Bool("tool", isTool);
  if (isTool) shown.StyleEx |= WindowStyleEx::ToolWindow;
  return window;
}

TSimulatedProgram ReadProduct(const TReader& AReader, const TNode& ANode) {
  TSimulatedProgram program;
  const TNode* const path = AReader.Text("path", program.Path);
  if (path == nullptr) AReader.Fail(ANode, u"a program must have a \"path\"");
  AReader.Path(*path, program.Path);
  static_cast<void>(AReader.Text("arguments", program.Arguments));
  AReader.Time("runs", program.Runs);
  bool ends = true;
  AReader.Bool("ends", ends);
  if (!ends) program.Runs.reset();
  AReader.Number("exitCode", program.ExitCode);
  AReader.Time("changesAfter", program.ChangesAfter);
  AReader.Objects("windows",
                  [&](const TReader& AWindow, const TNode&) { program.Windows.push_back(ReadProgramWindow(AWindow)); });
  AReader.Objects("starts", [&](const TReader& AChild, const TNode& AChildNode) {
    TProgramChild child;
    if (AChild.Text("command", child.Command) == nullptr) AChild.Fail(AChildNode, u"\"starts\" needs a \"command\"");
    AChild.Number("after", child.After);
    program.Starts.push_back(std::move(child));
  });
  for (const auto& [name, list] :
       {std::pair{"removesKeys", &program.RemovesKeys}, {"createsKeys", &program.CreatesKeys}}) {
    AReader.Texts(name, [&, keys = list](std::u16string AText, const TNode& AKey) {
      if (!IsKeyPath(AText)) AReader.Fail(AKey, u"\"" + AText + u"\" must be a registry key (HKEY_LOCAL_MACHINE\\...)");
      keys->push_back(std::move(AText));
    });
  }
  for (const auto& [name, list] :
       {std::pair{"removesFiles", &program.RemovesFiles}, {"createsFiles", &program.CreatesFiles}}) {
    AReader.Texts(name, [&, paths = list](std::u16string AText, const TNode& AFile) {
      AReader.Path(AFile, AText);
      paths->push_back(std::move(AText));
    });
  }
  return program;
}

}  // namespace

TSimulatedFacts ParseFacts(std::span<const std::byte> AText, std::string_view AFileName) {
  const char* const begin = reinterpret_cast<const char*>(AText.data());
  TPosition position;
  TTreeBuilder builder(position, AFileName);
  if (!nlohmann::json::sax_parse(TTrackedIterator(begin, position), TTrackedIterator(begin + AText.size(), position),
                                 &builder)) {
    throw EImageError(AFileName, position.Line, u"the text is no JSON document");
  }
  const TNode& root = builder.Top().Members.front().Node;
  TSimulatedFacts facts;
  const TReader reader(root, AFileName);
  if (root.Kind != EKind::Object) reader.Fail(root, u"the document must be an object");
  if (const TNode* const windows = reader.Object("windows")) ReadWindows(TReader(*windows, AFileName), facts);
  facts.IsWow64 = facts.Is64Bit();
  reader.Bool("wow64", facts.IsWow64);
  if (facts.IsWow64 && !facts.Is64Bit()) {
    reader.Fail(*root.Find("wow64"), u"\"wow64\" cannot be true on a 32-bit system");
  }
  if (const TNode* const user = reader.Object("user")) ReadUser(TReader(*user, AFileName), facts);
  TLocale locale;
  if (const TNode* const node = reader.Text("locale", facts.LocaleName);
      node && !FindLocale(facts.LocaleName, locale)) {
    reader.Fail(*node, u"\"locale\" names no locale of Windows (as \"en-US\" does)");
  }
  if (const TNode* const environment = reader.Object("environment")) ReadEnvironment(*environment, reader, facts);
  reader.Objects("programs", [&](const TReader& AProgram, const TNode& ANode) {
    facts.Programs.push_back(ReadProduct(AProgram, ANode));
  });
  std::u16string now;
  if (const TNode* const node = reader.Text("now", now); node && !TryTextToTime(now, facts.Now)) {
    reader.Fail(*node, u"\"now\" must be a time as 2012-08-09T10:11:12");
  }
  return facts;
}

TSimulatedFacts ReadFacts(const IImageSource& AImage) {
  constexpr std::string_view Name = "machine.json";
  if (!AImage.HasFile(Name)) return {};
  std::vector<std::byte> buffer;
  return ParseFacts(AImage.Read(Name, buffer), Name);
}

}  // namespace varcolin
