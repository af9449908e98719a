#include "benchmarks/Figures.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

namespace varcolin::benchmarks {

namespace {

double Median(std::vector<double> AValues) {
  const auto middle = AValues.begin() + static_cast<std::ptrdiff_t>(AValues.size() / 2);
  std::ranges::nth_element(AValues, middle);
  return *middle;
}

const char* NameOf(EUnit AUnit) {
  switch (AUnit) {
    case EUnit::Ratio:
      return "ratio";
    case EUnit::Bytes:
      return "bytes";
    case EUnit::Microseconds:
      return "microseconds";
  }
  return "";
}

std::string Text(double AValue, EUnit AUnit) {
  char text[32];
  std::snprintf(text, sizeof text, AUnit == EUnit::Bytes ? "%.0f" : "%.2f", AValue);
  return text;
}

}  // namespace

int RunFigures(std::span<const TFigure> AFigures, std::string_view ABeginning) {
  bool broken = false;
  for (const TFigure& figure : AFigures) {
    if (!figure.Name.starts_with(ABeginning)) continue;
    double value = 0;
    try {
      value = figure.Measure();
    } catch (const TSkipped& reason) {
      std::fprintf(stderr, "%.*s skipped: %s\n", static_cast<int>(figure.Name.size()), figure.Name.data(),
                   reason.what());
      continue;
    }
    std::printf("%.*s %s=%s bound=%s\n", static_cast<int>(figure.Name.size()), figure.Name.data(), NameOf(figure.Unit),
                Text(value, figure.Unit).c_str(), figure.Bound ? Text(*figure.Bound, figure.Unit).c_str() : "-");
    std::fflush(stdout);
    // a figure that is no number has not kept its bound either
    if (figure.Bound && !(value <= *figure.Bound)) broken = true;
  }
  return broken ? 1 : 0;
}

double RatioOfMedians(int ARounds, const std::function<double()>& AFirst, const std::function<double()>& ASecond) {
  std::vector<double> first;
  std::vector<double> second;
  AFirst();
  ASecond();
  for (int round = 0; round < ARounds; ++round) {
    first.push_back(AFirst());
    second.push_back(ASecond());
  }
  return Median(std::move(first)) / Median(std::move(second));
}

double RatioByTurns(int ARounds, std::size_t AParts, const std::function<double(std::size_t)>& AFirst,
                    const std::function<double(std::size_t)>& ASecond) {
  const auto ratioOfRound = [&] {
    double first = 0;
    double second = 0;
    for (std::size_t part = 0; part < AParts; ++part) {
      first += AFirst(part);
      second += ASecond((part + AParts / 2) % AParts);
    }
    return first / second;
  };
  std::vector<double> ratios;
  ratioOfRound();
  for (int round = 0; round < ARounds; ++round) ratios.push_back(ratioOfRound());
  return Median(std::move(ratios));
}

double SecondsOf(const std::function<void()>& AAction) {
  const auto begin = std::chrono::steady_clock::now();
  AAction();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

}  // namespace varcolin::benchmarks
