// An engine library as older builds lay it out: IUnknown with a virtual destructor.
#include <cstdint>

namespace {
struct Variant
{
    uint16_t vt, r1, r2, r3;
    uint64_t value;
};
} // namespace

extern "C" __attribute__((visibility("default"))) int32_t CreateObject(const void *, const void *, void **object)
{
    *object = nullptr;
    return int32_t(0x80004005u);
}

extern "C" __attribute__((visibility("default"))) int32_t GetModuleProp(uint32_t id, Variant *value)
{
    value->vt = 19; // VT_UI4
    value->value = id == 0 ? 1 : 0x100002;
    return 0;
}
