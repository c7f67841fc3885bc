#include "host/automation_csv.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "host/failure.h"
#include "host/file_handle.h"
#include "host/text.h"

namespace tervan::host {
namespace {

constexpr size_t kFields = 6;
constexpr double kUnitsPerSecond = 1e7;  // REFERENCE_TIME
constexpr double kMaxSeconds = 1e9;      // far beyond any file, far below what REFERENCE_TIME holds

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (;;) {
    const size_t end = text.find(separator);
    parts.push_back(Trimmed(text.substr(0, end)));
    if (end == std::string_view::npos) return parts;
    text.remove_prefix(end + 1);
  }
}

std::optional<REFERENCE_TIME> ParseTime(std::string_view text) {
  const auto seconds = ParseNumber(text);
  if (!seconds || *seconds < 0.0 || *seconds > kMaxSeconds) return std::nullopt;
  return std::llround(*seconds * kUnitsPerSecond);
}

// The effect that the text before the first dot names: by name or by position. Nothing when it names none.
std::optional<size_t> EffectNamed(std::string_view name, std::span<const EffectInstance> chain) {
  const auto position = ParseInteger(name);
  if (position && *position >= 1 && *position <= static_cast<long>(chain.size())) return *position - 1;
  std::optional<size_t> found;
  for (size_t i = 0; i < chain.size(); ++i) {
    if (Lower(name) != chain[i].Type().name) continue;
    if (found) throw UsageError("the chain has several effects called " + Quoted(name) + "; write 1., 2., ...");
    found = i;
  }
  return found;
}

class Reader {
 public:
  explicit Reader(std::span<const EffectInstance> chain) : chain_(chain) {}

  void TakeLine(std::string_view line) {
    const std::vector<std::string_view> fields = Split(line, ',');
    if (fields.size() != kFields) {
      throw UsageError("a line has " + std::to_string(kFields) +
                       " fields: parameter, start s, end s, start value, end value, curve");
    }
    const bool may_be_heading = !has_lines_;
    has_lines_ = true;
    if (may_be_heading && !ParseNumber(fields[1]) && !ParseNumber(fields[2])) return;

    const auto [effect, param] = ParamNamed(fields[0]);
    const ParamDescription& description = chain_[effect].Params()[param];
    if (description.curve_caps == 0) {
      throw UsageError("the " + description.label + " of the " + std::string(chain_[effect].Type().name) +
                       " cannot be automated");
    }
    const auto start = ParseTime(fields[1]), end = ParseTime(fields[2]);
    if (!start || !end || *end <= *start) {
      throw UsageError("start and end are seconds from 0 on, the end after the start");
    }
    MP_ENVELOPE_SEGMENT segment{};
    segment.rtStart = *start;
    segment.rtEnd = *end;
    segment.valStart = ParseParamValue(description, fields[3]);
    segment.valEnd = ParseParamValue(description, fields[4]);
    segment.iCurve = ParseCurve(description, fields[5]);
    Insert(effect, param, segment);
  }

  std::vector<Envelope> Take() { return std::move(envelopes_); }

 private:
  std::pair<size_t, DWORD> ParamNamed(std::string_view name) const {
    if (chain_.empty()) throw UsageError("there is no effect to automate");
    std::optional<size_t> effect;
    const size_t dot = name.find('.');
    if (dot != std::string_view::npos) effect = EffectNamed(name.substr(0, dot), chain_);
    if (effect) {
      name.remove_prefix(dot + 1);
    } else if (chain_.size() > 1) {
      throw UsageError("in a chain the effect stands before the parameter, as in 1.threshold, not " + Quoted(name));
    }
    const EffectInstance& instance = chain_[effect.value_or(0)];
    return {effect.value_or(0), FindParam(instance.Params(), name, instance.Type().name)};
  }

  void Insert(size_t effect, DWORD param, const MP_ENVELOPE_SEGMENT& segment) {
    auto envelope = std::ranges::find_if(
        envelopes_, [&](const Envelope& other) { return other.effect == effect && other.param == param; });
    if (envelope == envelopes_.end()) envelope = envelopes_.insert(envelope, {effect, param, {}});
    auto& segments = envelope->segments;
    const auto next = std::ranges::upper_bound(segments, segment.rtStart, {}, &MP_ENVELOPE_SEGMENT::rtStart);
    const bool overlaps_next = next != segments.end() && next->rtStart < segment.rtEnd;
    const bool overlaps_previous = next != segments.begin() && std::prev(next)->rtEnd > segment.rtStart;
    if (overlaps_next || overlaps_previous) throw UsageError("this overlaps an earlier line for the same parameter");
    segments.insert(next, segment);
  }

  std::span<const EffectInstance> chain_;
  std::vector<Envelope> envelopes_;
  bool has_lines_ = false;
};

}  // namespace

std::vector<Envelope> ReadAutomation(const std::string& path, std::span<const EffectInstance> chain) {
  const std::vector<std::uint8_t> content = ReadWholeFile(path);
  std::string_view text(reinterpret_cast<const char*>(content.data()), content.size());
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
  Reader reader(chain);
  int number = 0;
  for (const std::string_view line : Split(text, '\n')) {
    ++number;
    if (line.empty() || line.starts_with('#')) continue;
    try {
      reader.TakeLine(line);
    } catch (const UsageError& error) {
      throw Failure(Quoted(path) + " line " + std::to_string(number) + ": " + error.what());
    }
  }
  return reader.Take();
}

void Automate(std::span<EffectInstance> chain, std::span<const Envelope> envelopes) {
  for (const Envelope& envelope : envelopes) chain[envelope.effect].Automate(envelope.param, envelope.segments);
}

}  // namespace tervan::host
