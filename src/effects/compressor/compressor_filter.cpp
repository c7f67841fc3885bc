#include "effects/compressor/compressor_filter.h"

#include <memory>
#include <new>

namespace tervan {
namespace {

class GraphClock final : public StreamClock {
 public:
  explicit GraphClock(IReferenceClock* clock) : clock_(clock) {}
  std::int64_t Now_100ns() override {
    REFERENCE_TIME now = 0;
    clock_->GetTime(&now);
    return now;
  }

 private:
  const directshow::ComPtr<IReferenceClock> clock_;
};

}  // namespace

HRESULT CompressorFilter::SetSyncSource(IReferenceClock* clock) {
  std::shared_ptr<StreamClock> graph_clock;
  try {
    if (clock) graph_clock = std::make_shared<GraphClock>(clock);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  const HRESULT result = FilterShell::SetSyncSource(clock);
  if (SUCCEEDED(result)) control_.SetClock(std::move(graph_clock));
  return result;
}

}  // namespace tervan
