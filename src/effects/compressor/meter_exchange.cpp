#include "effects/compressor/meter_exchange.h"

#include <algorithm>
#include <cmath>

namespace tervan {
namespace {

CompressorMeters Between(const CompressorMeters& a, const CompressorMeters& b, double fraction) {
  const auto mix = [fraction](double from, double to) { return from + (to - from) * fraction; };
  return {mix(a.input_left, b.input_left), mix(a.input_right, b.input_right), mix(a.output_left, b.output_left),
          mix(a.output_right, b.output_right), mix(a.reduction, b.reduction)};
}

CompressorMeters Extremes(const CompressorMeters& a, const CompressorMeters& b) {
  return {std::max(a.input_left, b.input_left), std::max(a.input_right, b.input_right),
          std::max(a.output_left, b.output_left), std::max(a.output_right, b.output_right),
          std::min(a.reduction, b.reduction)};
}

}  // namespace

void MeterExchange::StartHistory() {
  if (!history_) history_ = std::make_unique<History>();
}

void MeterExchange::Put(const CompressorMeters& meters, bool keep) {
  latest_ = meters;
  if (!keep || !history_) return;
  (*history_)[write_] = {meters, time_100ns_};
  write_ = After(write_);
  if (write_ == read_) read_ = After(read_);
}

void MeterExchange::PutChunk(const CompressorMeters& meters, bool keep) {
  const bool has_entries = history_ && write_ != read_;
  Entry* const newest = has_entries ? &(*history_)[Before(write_)] : nullptr;
  if (!keep || !newest || newest->time_100ns != time_100ns_) return Put(meters, keep);
  latest_ = meters;
  newest->meters = Extremes(newest->meters, meters);
}

void MeterExchange::PutEnd(bool keep) {
  AdvanceTime(1);  // a record of the sample's own time would never be reached
  Put(kIdleMeters, keep);
}

CompressorMeters MeterExchange::At(std::int64_t now_100ns) {
  if (now_100ns == 0) return kIdleMeters;
  const History& history = *history_;
  const Entry* current = &history[read_];
  const Entry* next = &history[After(read_)];
  if (now_100ns < current->time_100ns) return current->meters;
  for (std::size_t steps = 0; next->time_100ns < now_100ns; ++steps) {
    if (next->time_100ns <= current->time_100ns || read_ == write_ || steps == kEntries) return current->meters;
    read_ = After(read_);
    current = next;
    next = &history[After(read_)];
  }
  if (next->time_100ns <= current->time_100ns) return current->meters;
  const double span = static_cast<double>(next->time_100ns - current->time_100ns);
  return Between(current->meters, next->meters, static_cast<double>(now_100ns - current->time_100ns) / span);
}

void MeterExchange::Reset() {
  latest_ = kIdleMeters;
  if (history_) history_->fill({});
  write_ = read_ = 0;
  time_100ns_ = 0;
}

}  // namespace tervan
