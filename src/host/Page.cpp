#include "host/Page.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "host/Cells.h"
#include "host/PageFiles.h"
#include "host/Text.h"

namespace varcolin::host {

namespace {

std::string Base64(std::string_view AData) {
  constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string result;
  for (; !AData.empty(); AData.remove_prefix(std::min<std::size_t>(AData.size(), 3))) {
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      group = group << 8U | (i < AData.size() ? static_cast<unsigned char>(AData[i]) : 0U);
    }
    for (std::size_t i = 0; i < 4; ++i) {
      result += i <= AData.size() ? digits[group >> (18 - 6 * i) & 63U] : '=';
    }
  }
  return result;
}

/// The bytes that pairs of hexadecimal digits tell.
std::string FromHex(std::string_view AHex) {
  const auto digit = [](char ADigit) {
    return static_cast<unsigned>(ADigit <= '9' ? ADigit - '0' : (ADigit | ' ') - 'a' + 10);
  };
  std::string result;
  for (std::size_t i = 0; i + 1 < AHex.size(); i += 2) {
    result += static_cast<char>(digit(AHex[i]) << 4U | digit(AHex[i + 1]));
  }
  return result;
}

/// A text that is nothing but text wherever it stands in the page.
std::string Escaped(std::string_view AText) {
  std::string result;
  for (const char character : Printable(AText)) {
    switch (character) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      case '\'':
        result += "&#39;";
        break;
      default:
        result += character;
    }
  }
  return result;
}

std::string_view FileOf(std::string_view AName) {
  const auto files = PageFiles();
  const auto found =
      std::ranges::find(files, AName, [](const TEmbeddedFile& AFile) { return std::string_view(AFile.Path); });
  if (found == files.end()) throw std::logic_error("a part of the page is not built in");
  return {reinterpret_cast<const char*>(found->Begin), found->Size};
}

/// One cell of a row. A text sorts by what it shows.
struct TCell {
  std::string Html;
  std::optional<std::string> Key;  ///< what it is sorted by; empty when that is unknown
};

TCell TextCell(std::string_view AText) {
  // what is written from right to left must not move what surrounds it
  return {AText.empty() ? std::string() : "<bdi>" + Escaped(AText) + "</bdi>", std::nullopt};
}

TCell WordCell(std::string_view AWord, int ARank) {
  const std::string word = Escaped(AWord);
  return {"<span class=\"word " + word + "\">" + word + "</span>", ARank < 0 ? std::string() : std::to_string(ARank)};
}

TCell NameCell(const TProductRecord& ARecord) { return TextCell(ARecord.DisplayName); }
TCell VersionCell(const TProductRecord& ARecord) { return TextCell(ARecord.Version); }
TCell PublisherCell(const TProductRecord& ARecord) { return TextCell(ARecord.Publisher); }
TCell ParentCell(const TProductRecord& ARecord) { return TextCell(ARecord.ParentDisplayName); }
TCell TypeCell(const TProductRecord& ARecord) { return TextCell(ReleaseTypeText(ARecord.ReleaseType)); }

TCell DateCell(const TProductRecord& ARecord) {
  const std::string date = FormatDate(ARecord.InstallDate);
  return {date.empty() ? date : "<time datetime=\"" + date + "\">" + date + "</time>",
          FormatIsoDateTime(ARecord.InstallDate)};
}

TCell SizeCell(const TProductRecord& ARecord) {
  const std::int64_t size = ARecord.EstimatedSize;
  return {FormatSize(size), size > 0 ? std::to_string(size) : std::string()};
}

TCell UsageCell(const TProductRecord& ARecord) {
  if (ARecord.Usage == TUsedType::utNone) return {{}, std::string()};
  return WordCell(UsageName(ARecord.Usage), static_cast<int>(ARecord.Usage));
}

TCell RatingCell(const TProductRecord& ARecord) {
  const bool isKnown = ARecord.Rating != TSoftwareRating::stUnknown;
  return WordCell(RatingName(ARecord.Rating), isKnown ? static_cast<int>(ARecord.Rating) : -1);
}

struct TPageColumn {
  std::string_view Title;
  std::string_view Class;
  std::string_view Sort;               ///< how the script compares: text, number, date
  bool Descends;                       ///< whether it is sorted from the last to the first at the first click
  std::optional<ESortOrder> SortedBy;  ///< the order of the command line that is this column's
  TCell (*Cell)(const TProductRecord&);
};

// The product's name is the first column of both.
constexpr std::array ProgramColumns{
    TPageColumn{"Name", "", "text", false, ESortOrder::Name, NameCell},
    TPageColumn{"Version", "", "text", false, {}, VersionCell},
    TPageColumn{"Publisher", "text", "text", false, ESortOrder::Publisher, PublisherCell},
    TPageColumn{"Installed", "date", "date", true, ESortOrder::Date, DateCell},
    TPageColumn{"Size", "number", "number", true, ESortOrder::Size, SizeCell},
    TPageColumn{"Used", "", "number", true, {}, UsageCell},
    TPageColumn{"Rating", "", "number", true, {}, RatingCell},
};
constexpr std::array UpdateColumns{
    TPageColumn{"Name", "", "text", false, ESortOrder::Name, NameCell},
    TPageColumn{"Type", "text", "text", false, {}, TypeCell},
    TPageColumn{"Belongs to", "text", "text", false, {}, ParentCell},
    TPageColumn{"Version", "", "text", false, {}, VersionCell},
    TPageColumn{"Installed", "date", "date", true, ESortOrder::Date, DateCell},
    TPageColumn{"Size", "number", "number", true, ESortOrder::Size, SizeCell},
};

std::span<const TPageColumn> ColumnsOf(EProductKind AKind) {
  if (AKind == EProductKind::Update) return UpdateColumns;
  return ProgramColumns;
}

/// The pictures of a page: each that differs from the others stands in it once.
class TPictures {
 public:
  explicit TPictures(const TPageIcons& AIcons) : FIcons(AIcons) {}

  /// What shows an icon; nothing when there is none.
  std::string Use(std::int32_t AIndex) {
    const auto icon = FIcons.find(AIndex);
    if (icon == FIcons.end()) return {};
    const auto known = FIds.find(AIndex);
    const std::string id = known != FIds.end() ? known->second : FIds.emplace(AIndex, Add(icon->second)).first->second;
    return "<svg aria-hidden=\"true\"><use href=\"#" + id + "\"/></svg>";
  }
  /// The pictures that were used.
  [[nodiscard]] const std::string& Html() const noexcept { return FHtml; }

 private:
  std::string Add(const TPicture& APicture) {
    const std::string png = FormatPng(APicture);
    const auto [entry, isNew] = FNumbers.emplace(png, FNumbers.size());
    const std::string id = "icon" + std::to_string(entry->second);
    if (!isNew) return id;
    const std::string size =
        "width=\"" + std::to_string(APicture.Width) + "\" height=\"" + std::to_string(APicture.Height) + '"';
    FHtml += "\n<symbol id=\"" + id + "\" viewBox=\"0 0 " + std::to_string(APicture.Width) + ' ' +
             std::to_string(APicture.Height) + "\"><image " + size + " href=\"data:image/png;base64," + Base64(png) +
             "\"/></symbol>";
    return id;
  }

  const TPageIcons& FIcons;
  std::map<std::int32_t, std::string> FIds;
  std::map<std::string, std::size_t> FNumbers;  // of the pictures by their bytes
  std::string FHtml;
};

std::string FormatHeadings(std::span<const TPageColumn> AColumns, std::optional<ESortOrder> AOrder) {
  std::string html = "<th scope=\"col\"><span class=\"unseen\">Icon</span></th>";
  for (const TPageColumn& column : AColumns) {
    const std::string_view first = column.Descends ? "descending" : "ascending";
    html += "<th scope=\"col\" data-sort=\"" + std::string(column.Sort) + "\" data-first=\"" + std::string(first) + '"';
    if (AOrder && column.SortedBy == AOrder) html += " aria-sort=\"" + std::string(first) + '"';
    if (!column.Class.empty()) html += " class=\"" + std::string(column.Class) + '"';
    html += '>' + std::string(column.Title) + "</th>";
  }
  return html;
}

void AppendRow(std::string& AHtml, std::span<const TPageColumn> AColumns, const TProductRecord& AProduct,
               TPictures& APictures) {
  AHtml += "\n<tr><td class=\"icon\">" + APictures.Use(AProduct.IconIndex) + "</td>";
  bool isName = true;
  for (const TPageColumn& column : AColumns) {
    const TCell cell = column.Cell(AProduct);
    const std::string_view tag = isName ? "th" : "td";
    AHtml += '<' + std::string(tag);
    if (isName) AHtml += " scope=\"row\"";
    if (!column.Class.empty()) AHtml += " class=\"" + std::string(column.Class) + '"';
    if (cell.Key) AHtml += " data-key=\"" + *cell.Key + '"';
    AHtml += '>' + cell.Html + "</" + std::string(tag) + '>';
    isName = false;
  }
  AHtml += "</tr>";
}

/// The template with what stands for its names in double braces; what is put in is not looked at again.
std::string Fill(std::string_view ATemplate, const std::map<std::string_view, std::string_view>& AParts) {
  std::string page;
  for (std::size_t begin = 0; (begin = ATemplate.find("{{")) != ATemplate.npos;) {
    const std::size_t end = ATemplate.find("}}", begin);
    page += ATemplate.substr(0, begin);
    page += AParts.at(ATemplate.substr(begin + 2, end - begin - 2));
    ATemplate.remove_prefix(end + 2);
  }
  return page.append(ATemplate);
}

}  // namespace

std::string FormatPage(const TPageOptions& AOptions, std::span<const TProductRecord> AProducts,
                       const TPageIcons& AIcons) {
  const bool ofUpdates = AOptions.Kind == EProductKind::Update;
  const std::string noun = ofUpdates ? "update" : "program";
  const std::string nouns = noun + 's';
  const std::span<const TPageColumn> columns = ColumnsOf(AOptions.Kind);
  TPictures pictures(AIcons);
  std::string rows;
  for (const TProductRecord& product : AProducts) AppendRow(rows, columns, product, pictures);
  std::string filter;
  if (!AOptions.Filter.empty()) {
    filter = "<p class=\"filter\">Only " + nouns + " with <q>" + Escaped(AOptions.Filter) +
             "</q> in name or publisher</p>\n";
  }
  const std::string title = "Installed " + nouns;
  const std::string caption = std::to_string(AProducts.size()) + " installed " + (AProducts.size() == 1 ? noun : nouns);
  const std::string headings = FormatHeadings(columns, AOptions.Order);
  const std::string styleHash = Base64(FromHex(PAGE_STYLE_SHA256));
  const std::string scriptHash = Base64(FromHex(PAGE_SCRIPT_SHA256));
  return Fill(FileOf("page.html"), {{"title", title},
                                    {"styleHash", styleHash},
                                    {"scriptHash", scriptHash},
                                    {"style", FileOf("style.css")},
                                    {"script", FileOf("script.js")},
                                    {"pictures", pictures.Html()},
                                    {"filter", filter},
                                    {"noun", noun},
                                    {"nouns", nouns},
                                    {"caption", caption},
                                    {"headings", headings},
                                    {"rows", rows},
                                    {"version", VARCOLIN_VERSION}});
}

}  // namespace varcolin::host
