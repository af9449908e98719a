#include "platform/simulated/Locales.h"

#include <algorithm>
#include <iterator>

#include "support/uText.h"

namespace varcolin {
namespace {

struct TRow {
  std::uint16_t Id;
  std::u16string_view Name;
  std::u16string_view DisplayName;
  std::u16string_view Abbreviation;
};

// Sorted by id. Bare languages stand here only where their name is not the first part of their default locale's.
// clang-format off
constexpr TRow Rows[] = {
  {0x0004, u"zh-Hans", u"Chinese (Simplified)", u"CHS"},
  {0x0014, u"no", u"Norwegian", u"NOR"},
  {0x0401, u"ar-SA", u"Arabic (Saudi Arabia)", u"ARA"},
  {0x0402, u"bg-BG", u"Bulgarian (Bulgaria)", u"BGR"},
  {0x0403, u"ca-ES", u"Catalan (Catalan)", u"CAT"},
  {0x0404, u"zh-TW", u"Chinese (Traditional, Taiwan)", u"CHT"},
  {0x0405, u"cs-CZ", u"Czech (Czech Republic)", u"CSY"},
  {0x0406, u"da-DK", u"Danish (Denmark)", u"DAN"},
  {0x0407, u"de-DE", u"German (Germany)", u"DEU"},
  {0x0408, u"el-GR", u"Greek (Greece)", u"ELL"},
  {0x0409, u"en-US", u"English (United States)", u"ENU"},
  {0x040A, u"es-ES_tradnl", u"Spanish (Spain, Traditional Sort)", u"ESP"},
  {0x040B, u"fi-FI", u"Finnish (Finland)", u"FIN"},
  {0x040C, u"fr-FR", u"French (France)", u"FRA"},
  {0x040D, u"he-IL", u"Hebrew (Israel)", u"HEB"},
  {0x040E, u"hu-HU", u"Hungarian (Hungary)", u"HUN"},
  {0x040F, u"is-IS", u"Icelandic (Iceland)", u"ISL"},
  {0x0410, u"it-IT", u"Italian (Italy)", u"ITA"},
  {0x0411, u"ja-JP", u"Japanese (Japan)", u"JPN"},
  {0x0412, u"ko-KR", u"Korean (Korea)", u"KOR"},
  {0x0413, u"nl-NL", u"Dutch (Netherlands)", u"NLD"},
  {0x0414, u"nb-NO", u"Norwegian, Bokm\u00E5l (Norway)", u"NOR"},
  {0x0415, u"pl-PL", u"Polish (Poland)", u"PLK"},
  {0x0416, u"pt-BR", u"Portuguese (Brazil)", u"PTB"},
  {0x0417, u"rm-CH", u"Romansh (Switzerland)", u"RMC"},
  {0x0418, u"ro-RO", u"Romanian (Romania)", u"ROM"},
  {0x0419, u"ru-RU", u"Russian (Russia)", u"RUS"},
  {0x041A, u"hr-HR", u"Croatian (Croatia)", u"HRV"},
  {0x041B, u"sk-SK", u"Slovak (Slovakia)", u"SKY"},
  {0x041C, u"sq-AL", u"Albanian (Albania)", u"SQI"},
  {0x041D, u"sv-SE", u"Swedish (Sweden)", u"SVE"},
  {0x041E, u"th-TH", u"Thai (Thailand)", u"THA"},
  {0x041F, u"tr-TR", u"Turkish (Turkey)", u"TRK"},
  {0x0420, u"ur-PK", u"Urdu (Islamic Republic of Pakistan)", u"URD"},
  {0x0421, u"id-ID", u"Indonesian (Indonesia)", u"IND"},
  {0x0422, u"uk-UA", u"Ukrainian (Ukraine)", u"UKR"},
  {0x0423, u"be-BY", u"Belarusian (Belarus)", u"BEL"},
  {0x0424, u"sl-SI", u"Slovenian (Slovenia)", u"SLV"},
  {0x0425, u"et-EE", u"Estonian (Estonia)", u"ETI"},
  {0x0426, u"lv-LV", u"Latvian (Latvia)", u"LVI"},
  {0x0427, u"lt-LT", u"Lithuanian (Lithuania)", u"LTH"},
  {0x0428, u"tg-Cyrl-TJ", u"Tajik (Cyrillic, Tajikistan)", u"TAJ"},
  {0x0429, u"fa-IR", u"Persian", u"FAR"},
  {0x042A, u"vi-VN", u"Vietnamese (Vietnam)", u"VIT"},
  {0x042B, u"hy-AM", u"Armenian (Armenia)", u"HYE"},
  {0x042C, u"az-Latn-AZ", u"Azeri (Latin, Azerbaijan)", u"AZE"},
  {0x042D, u"eu-ES", u"Basque (Basque)", u"EUQ"},
  {0x042E, u"hsb-DE", u"Upper Sorbian (Germany)", u"HSB"},
  {0x042F, u"mk-MK", u"Macedonian (Former Yugoslav Republic of Macedonia)", u"MKI"},
  {0x0432, u"tn-ZA", u"Setswana (South Africa)", u"TSN"},
  {0x0434, u"xh-ZA", u"isiXhosa (South Africa)", u"XHO"},
  {0x0435, u"zu-ZA", u"isiZulu (South Africa)", u"ZUL"},
  {0x0436, u"af-ZA", u"Afrikaans (South Africa)", u"AFK"},
  {0x0437, u"ka-GE", u"Georgian (Georgia)", u"KAT"},
  {0x0438, u"fo-FO", u"Faroese (Faroe Islands)", u"FOS"},
  {0x0439, u"hi-IN", u"Hindi (India)", u"HIN"},
  {0x043A, u"mt-MT", u"Maltese (Malta)", u"MLT"},
  {0x043B, u"se-NO", u"Sami, Northern (Norway)", u"SME"},
  {0x043E, u"ms-MY", u"Malay (Malaysia)", u"MSL"},
  {0x043F, u"kk-KZ", u"Kazakh (Kazakhstan)", u"KKZ"},
  {0x0440, u"ky-KG", u"Kyrgyz (Kyrgyzstan)", u"KYR"},
  {0x0441, u"sw-KE", u"Kiswahili (Kenya)", u"SWK"},
  {0x0442, u"tk-TM", u"Turkmen (Turkmenistan)", u"TUK"},
  {0x0443, u"uz-Latn-UZ", u"Uzbek (Latin, Uzbekistan)", u"UZB"},
  {0x0444, u"tt-RU", u"Tatar (Russia)", u"TTT"},
  {0x0445, u"bn-IN", u"Bengali (India)", u"BNG"},
  {0x0446, u"pa-IN", u"Punjabi (India)", u"PAN"},
  {0x0447, u"gu-IN", u"Gujarati (India)", u"GUJ"},
  {0x0448, u"or-IN", u"Oriya (India)", u"ORI"},
  {0x0449, u"ta-IN", u"Tamil (India)", u"TAM"},
  {0x044A, u"te-IN", u"Telugu (India)", u"TEL"},
  {0x044B, u"kn-IN", u"Kannada (India)", u"KDI"},
  {0x044C, u"ml-IN", u"Malayalam (India)", u"MYM"},
  {0x044D, u"as-IN", u"Assamese (India)", u"ASM"},
  {0x044E, u"mr-IN", u"Marathi (India)", u"MAR"},
  {0x044F, u"sa-IN", u"Sanskrit (India)", u"SAN"},
  {0x0450, u"mn-MN", u"Mongolian (Cyrillic, Mongolia)", u"MNN"},
  {0x0451, u"bo-CN", u"Tibetan (PRC)", u"BOB"},
  {0x0452, u"cy-GB", u"Welsh (United Kingdom)", u"CYM"},
  {0x0453, u"km-KH", u"Khmer (Cambodia)", u"KHM"},
  {0x0454, u"lo-LA", u"Lao (Lao P.D.R.)", u"LAO"},
  {0x0456, u"gl-ES", u"Galician (Galician)", u"GLC"},
  {0x0457, u"kok-IN", u"Konkani (India)", u"KNK"},
  {0x045A, u"syr-SY", u"Syriac (Syria)", u"SYR"},
  {0x045B, u"si-LK", u"Sinhala (Sri Lanka)", u"SIN"},
  {0x045D, u"iu-Cans-CA", u"Inuktitut (Syllabics, Canada)", u"IUS"},
  {0x045E, u"am-ET", u"Amharic (Ethiopia)", u"AMH"},
  {0x0461, u"ne-NP", u"Nepali (Nepal)", u"NEP"},
  {0x0462, u"fy-NL", u"Frisian (Netherlands)", u"FYN"},
  {0x0463, u"ps-AF", u"Pashto (Afghanistan)", u"PAS"},
  {0x0464, u"fil-PH", u"Filipino (Philippines)", u"FPO"},
  {0x0465, u"dv-MV", u"Divehi (Maldives)", u"DIV"},
  {0x0468, u"ha-Latn-NG", u"Hausa (Latin, Nigeria)", u"HAU"},
  {0x046A, u"yo-NG", u"Yoruba (Nigeria)", u"YOR"},
  {0x046B, u"quz-BO", u"Quechua (Bolivia)", u"QUB"},
  {0x046C, u"nso-ZA", u"Sesotho sa Leboa (South Africa)", u"NSO"},
  {0x046D, u"ba-RU", u"Bashkir (Russia)", u"BAS"},
  {0x046E, u"lb-LU", u"Luxembourgish (Luxembourg)", u"LBX"},
  {0x046F, u"kl-GL", u"Greenlandic (Greenland)", u"KAL"},
  {0x0470, u"ig-NG", u"Igbo (Nigeria)", u"IBO"},
  {0x0478, u"ii-CN", u"Yi (PRC)", u"III"},
  {0x047A, u"arn-CL", u"Mapudungun (Chile)", u"MPD"},
  {0x047C, u"moh-CA", u"Mohawk (Mohawk)", u"MWK"},
  {0x047E, u"br-FR", u"Breton (France)", u"BRE"},
  {0x0480, u"ug-CN", u"Uyghur (PRC)", u"UIG"},
  {0x0481, u"mi-NZ", u"Maori (New Zealand)", u"MRI"},
  {0x0482, u"oc-FR", u"Occitan (France)", u"OCI"},
  {0x0483, u"co-FR", u"Corsican (France)", u"COS"},
  {0x0484, u"gsw-FR", u"Alsatian (France)", u"GSW"},
  {0x0485, u"sah-RU", u"Yakut (Russia)", u"SAH"},
  {0x0486, u"qut-GT", u"K'iche (Guatemala)", u"QUT"},
  {0x0487, u"rw-RW", u"Kinyarwanda (Rwanda)", u"KIN"},
  {0x0488, u"wo-SN", u"Wolof (Senegal)", u"WOL"},
  {0x048C, u"prs-AF", u"Dari (Afghanistan)", u"PRS"},
  {0x0491, u"gd-GB", u"Scottish Gaelic (United Kingdom)", u"GLA"},
  {0x0801, u"ar-IQ", u"Arabic (Iraq)", u"ARI"},
  {0x0804, u"zh-CN", u"Chinese (Simplified, PRC)", u"CHS"},
  {0x0807, u"de-CH", u"German (Switzerland)", u"DES"},
  {0x0809, u"en-GB", u"English (United Kingdom)", u"ENG"},
  {0x080A, u"es-MX", u"Spanish (Mexico)", u"ESM"},
  {0x080C, u"fr-BE", u"French (Belgium)", u"FRB"},
  {0x0810, u"it-CH", u"Italian (Switzerland)", u"ITS"},
  {0x0813, u"nl-BE", u"Dutch (Belgium)", u"NLB"},
  {0x0814, u"nn-NO", u"Norwegian, Nynorsk (Norway)", u"NON"},
  {0x0816, u"pt-PT", u"Portuguese (Portugal)", u"PTG"},
  {0x081A, u"sr-Latn-CS", u"Serbian (Latin, Serbia and Montenegro (Former))", u"SRL"},
  {0x081D, u"sv-FI", u"Swedish (Finland)", u"SVF"},
  {0x082C, u"az-Cyrl-AZ", u"Azeri (Cyrillic, Azerbaijan)", u"AZC"},
  {0x082E, u"dsb-DE", u"Lower Sorbian (Germany)", u"DSB"},
  {0x083B, u"se-SE", u"Sami, Northern (Sweden)", u"SMF"},
  {0x083C, u"ga-IE", u"Irish (Ireland)", u"IRE"},
  {0x083E, u"ms-BN", u"Malay (Brunei Darussalam)", u"MSB"},
  {0x0843, u"uz-Cyrl-UZ", u"Uzbek (Cyrillic, Uzbekistan)", u"UZC"},
  {0x0845, u"bn-BD", u"Bengali (Bangladesh)", u"BNB"},
  {0x0850, u"mn-Mong-CN", u"Mongolian (Traditional Mongolian, PRC)", u"MNG"},
  {0x085D, u"iu-Latn-CA", u"Inuktitut (Latin, Canada)", u"IUK"},
  {0x085F, u"tzm-Latn-DZ", u"Tamazight (Latin, Algeria)", u"TZM"},
  {0x086B, u"quz-EC", u"Quechua (Ecuador)", u"QUE"},
  {0x0C01, u"ar-EG", u"Arabic (Egypt)", u"ARE"},
  {0x0C04, u"zh-HK", u"Chinese (Traditional, Hong Kong S.A.R.)", u"ZHH"},
  {0x0C07, u"de-AT", u"German (Austria)", u"DEA"},
  {0x0C09, u"en-AU", u"English (Australia)", u"ENA"},
  {0x0C0A, u"es-ES", u"Spanish (Spain, International Sort)", u"ESN"},
  {0x0C0C, u"fr-CA", u"French (Canada)", u"FRC"},
  {0x0C1A, u"sr-Cyrl-CS", u"Serbian (Cyrillic, Serbia and Montenegro (Former))", u"SRB"},
  {0x0C3B, u"se-FI", u"Sami, Northern (Finland)", u"SMG"},
  {0x0C6B, u"quz-PE", u"Quechua (Peru)", u"QUP"},
  {0x1001, u"ar-LY", u"Arabic (Libya)", u"ARL"},
  {0x1004, u"zh-SG", u"Chinese (Simplified, Singapore)", u"ZHI"},
  {0x1007, u"de-LU", u"German (Luxembourg)", u"DEL"},
  {0x1009, u"en-CA", u"English (Canada)", u"ENC"},
  {0x100A, u"es-GT", u"Spanish (Guatemala)", u"ESG"},
  {0x100C, u"fr-CH", u"French (Switzerland)", u"FRS"},
  {0x101A, u"hr-BA", u"Croatian (Latin, Bosnia and Herzegovina)", u"HRB"},
  {0x103B, u"smj-NO", u"Sami, Lule (Norway)", u"SMJ"},
  {0x1401, u"ar-DZ", u"Arabic (Algeria)", u"ARG"},
  {0x1404, u"zh-MO", u"Chinese (Traditional, Macao S.A.R.)", u"ZHM"},
  {0x1407, u"de-LI", u"German (Liechtenstein)", u"DEC"},
  {0x1409, u"en-NZ", u"English (New Zealand)", u"ENZ"},
  {0x140A, u"es-CR", u"Spanish (Costa Rica)", u"ESC"},
  {0x140C, u"fr-LU", u"French (Luxembourg)", u"FRL"},
  {0x141A, u"bs-Latn-BA", u"Bosnian (Latin, Bosnia and Herzegovina)", u"BSB"},
  {0x143B, u"smj-SE", u"Sami, Lule (Sweden)", u"SMK"},
  {0x1801, u"ar-MA", u"Arabic (Morocco)", u"ARM"},
  {0x1809, u"en-IE", u"English (Ireland)", u"ENI"},
  {0x180A, u"es-PA", u"Spanish (Panama)", u"ESA"},
  {0x180C, u"fr-MC", u"French (Monaco)", u"FRM"},
  {0x181A, u"sr-Latn-BA", u"Serbian (Latin, Bosnia and Herzegovina)", u"SRS"},
  {0x183B, u"sma-NO", u"Sami, Southern (Norway)", u"SMA"},
  {0x1C01, u"ar-TN", u"Arabic (Tunisia)", u"ART"},
  {0x1C09, u"en-ZA", u"English (South Africa)", u"ENS"},
  {0x1C0A, u"es-DO", u"Spanish (Dominican Republic)", u"ESD"},
  {0x1C1A, u"sr-Cyrl-BA", u"Serbian (Cyrillic, Bosnia and Herzegovina)", u"SRN"},
  {0x1C3B, u"sma-SE", u"Sami, Southern (Sweden)", u"SMB"},
  {0x2001, u"ar-OM", u"Arabic (Oman)", u"ARO"},
  {0x2009, u"en-JM", u"English (Jamaica)", u"ENJ"},
  {0x200A, u"es-VE", u"Spanish (Bolivarian Republic of Venezuela)", u"ESV"},
  {0x201A, u"bs-Cyrl-BA", u"Bosnian (Cyrillic, Bosnia and Herzegovina)", u"BSC"},
  {0x203B, u"sms-FI", u"Sami, Skolt (Finland)", u"SMS"},
  {0x2401, u"ar-YE", u"Arabic (Yemen)", u"ARY"},
  {0x2409, u"en-029", u"English (Caribbean)", u"ENB"},
  {0x240A, u"es-CO", u"Spanish (Colombia)", u"ESO"},
  {0x241A, u"sr-Latn-RS", u"Serbian (Latin, Serbia)", u"SRM"},
  {0x243B, u"smn-FI", u"Sami, Inari (Finland)", u"SMN"},
  {0x2801, u"ar-SY", u"Arabic (Syria)", u"ARS"},
  {0x2809, u"en-BZ", u"English (Belize)", u"ENL"},
  {0x280A, u"es-PE", u"Spanish (Peru)", u"ESR"},
  {0x281A, u"sr-Cyrl-RS", u"Serbian (Cyrillic, Serbia)", u"SRO"},
  {0x2C01, u"ar-JO", u"Arabic (Jordan)", u"ARJ"},
  {0x2C09, u"en-TT", u"English (Trinidad and Tobago)", u"ENT"},
  {0x2C0A, u"es-AR", u"Spanish (Argentina)", u"ESS"},
  {0x2C1A, u"sr-Latn-ME", u"Serbian (Latin, Montenegro)", u"SRP"},
  {0x3001, u"ar-LB", u"Arabic (Lebanon)", u"ARB"},
  {0x3009, u"en-ZW", u"English (Zimbabwe)", u"ENW"},
  {0x300A, u"es-EC", u"Spanish (Ecuador)", u"ESF"},
  {0x301A, u"sr-Cyrl-ME", u"Serbian (Cyrillic, Montenegro)", u"SRQ"},
  {0x3401, u"ar-KW", u"Arabic (Kuwait)", u"ARK"},
  {0x3409, u"en-PH", u"English (Republic of the Philippines)", u"ENP"},
  {0x340A, u"es-CL", u"Spanish (Chile)", u"ESL"},
  {0x3801, u"ar-AE", u"Arabic (U.A.E.)", u"ARU"},
  {0x380A, u"es-UY", u"Spanish (Uruguay)", u"ESY"},
  {0x3C01, u"ar-BH", u"Arabic (Bahrain)", u"ARH"},
  {0x3C0A, u"es-PY", u"Spanish (Paraguay)", u"ESZ"},
  {0x4001, u"ar-QA", u"Arabic (Qatar)", u"ARQ"},
  {0x4009, u"en-IN", u"English (India)", u"ENN"},
  {0x400A, u"es-BO", u"Spanish (Bolivia)", u"ESB"},
  {0x4409, u"en-MY", u"English (Malaysia)", u"ENM"},
  {0x440A, u"es-SV", u"Spanish (El Salvador)", u"ESE"},
  {0x4809, u"en-SG", u"English (Singapore)", u"ENE"},
  {0x480A, u"es-HN", u"Spanish (Honduras)", u"ESH"},
  {0x4C0A, u"es-NI", u"Spanish (Nicaragua)", u"ESI"},
  {0x500A, u"es-PR", u"Spanish (Puerto Rico)", u"ESU"},
  {0x540A, u"es-US", u"Spanish (United States)", u"EST"},
  {0x7C04, u"zh-Hant", u"Chinese (Traditional)", u"CHT"},
};
// clang-format on

static_assert(std::ranges::is_sorted(Rows, {}, &TRow::Id));

constexpr std::uint16_t PrimaryMask = 0x3FF;
constexpr std::uint16_t DefaultSubLanguage = 0x400;

TLocale LocaleOf(const TRow& ARow) noexcept {
  // Finnish, Bengali and Malayalam write a full stop
  const std::uint16_t primary = ARow.Id & PrimaryMask;
  const bool stop = primary == 0x0B || primary == 0x45 || primary == 0x4C;
  return {ARow.Id, ARow.Name, ARow.DisplayName, ARow.Abbreviation, stop ? u"." : u":"};
}

TLocale BareLanguage(const TRow& ADefault) noexcept {
  TLocale locale = LocaleOf(ADefault);
  locale.Id = ADefault.Id & PrimaryMask;
  locale.Name = locale.Name.substr(0, locale.Name.find(u'-'));
  locale.DisplayName = locale.DisplayName.substr(0, locale.DisplayName.find(u" ("));
  return locale;
}

}  // namespace

bool FindLocale(std::uint16_t AId, TLocale& ALocale) noexcept {
  const auto find = [](std::uint16_t AWanted) {
    const TRow* const row = std::ranges::lower_bound(Rows, AWanted, {}, &TRow::Id);
    return row != std::end(Rows) && row->Id == AWanted ? row : nullptr;
  };
  if (const TRow* const row = find(AId)) {
    ALocale = LocaleOf(*row);
    return true;
  }
  if ((AId & ~PrimaryMask) != 0 || AId == 0) return false;
  const TRow* const row = find(AId | DefaultSubLanguage);
  if (row == nullptr) return false;
  ALocale = BareLanguage(*row);
  return true;
}

bool FindLocale(std::u16string_view AName, TLocale& ALocale) noexcept {
  for (const TRow& row : Rows) {
    if (SameText(row.Name, AName)) {
      ALocale = LocaleOf(row);
      return true;
    }
  }
  // a bare language: its name is the first part of its locales'
  if (AName.empty() || AName.find(u'-') != std::u16string_view::npos) return false;
  for (const TRow& row : Rows) {
    if ((row.Id & ~PrimaryMask) != DefaultSubLanguage || !StartsText(AName, row.Name)) continue;
    if (row.Name.size() != AName.size() && row.Name[AName.size()] != u'-') continue;
    ALocale = BareLanguage(row);
    return true;
  }
  return false;
}

}  // namespace varcolin
