#include "Morphology/private/FoldKernels.impl.h"

namespace xsimd {
struct sse4_1;
}

namespace qel::morphology {

#define QEL_INSTANTIATE(T) template FoldKernels<T> foldKernels<xsimd::sse4_1, T>(bool);
QEL_INSTANTIATE(unsigned char)
QEL_INSTANTIATE(unsigned short)
QEL_INSTANTIATE(unsigned int)
QEL_INSTANTIATE(signed char)
QEL_INSTANTIATE(short)
QEL_INSTANTIATE(int)
QEL_INSTANTIATE(float)
QEL_INSTANTIATE(double)
#undef QEL_INSTANTIATE

} // namespace qel::morphology
