#include <qel/Data.h>

namespace qel {

Data::Data() = default;
Data::Data(Data const& other) = default;
Data& Data::operator=(Data const& other) = default;
Data::~Data() noexcept(false) = default;

} // namespace qel
