#include "module/class_table.h"

#include <new>

#include "directshow/com_ptr.h"
#include "effects/compressor/compressor_filter.h"
#include "effects/compressor/compressor_page.h"
#include "effects/dither/dither_filter.h"
#include "effects/dither/dither_page.h"
#include "effects/eq/eq_filter.h"
#include "effects/eq/eq_page.h"
#include "effects/gate/gate_filter.h"
#include "effects/gate/gate_page.h"

namespace tervan {
namespace {

template <typename Object>
directshow::ComObject* Create(IUnknown* outer, HRESULT* result) {
  try {
    return new Object(outer);
  } catch (const std::bad_alloc&) {
    *result = E_OUTOFMEMORY;
    return nullptr;
  }
}

constexpr ClassTemplate kClasses[] = {
    {kDitherFilterName, &kDitherTraits.filter_clsid, Create<DitherFilter>, &kDitherFilterSetup},
    {kDitherPageName, &kDitherTraits.page_clsid, Create<DitherPage>, nullptr},
    {kCompressorFilterName, &kCompressorTraits.filter_clsid, Create<CompressorFilter>, &kCompressorFilterSetup},
    {kCompressorPageName, &kCompressorTraits.page_clsid, Create<CompressorPage>, nullptr},
    {kEqFilterName, &kEqTraits.filter_clsid, Create<EqFilter>, &kEqFilterSetup},
    {kEqPageName, &kEqTraits.page_clsid, Create<EqPage>, nullptr},
    {kGateFilterName, &kGateTraits.filter_clsid, Create<GateFilter>, &kGateFilterSetup},
    {kGatePageName, &kGateTraits.page_clsid, Create<GatePage>, nullptr},
};

}  // namespace

std::span<const ClassTemplate> ClassTable() { return kClasses; }

HRESULT CreateFrom(const ClassTemplate& row, IUnknown* outer, REFIID iid, void** out) {
  *out = nullptr;
  HRESULT result = S_OK;
  directshow::ComObject* const object = row.create(outer, &result);
  if (!object) return FAILED(result) ? result : E_OUTOFMEMORY;
  const directshow::ComPtr<IUnknown> inner(object->Inner());  // its release destroys an object that nobody wants
  return FAILED(result) ? result : inner->QueryInterface(iid, out);
}

}  // namespace tervan
