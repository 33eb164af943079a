#include "Classification/private/AbstractSupervisedClassifier.h"

namespace qel::classification {

AbstractSupervisedClassifier::~AbstractSupervisedClassifier() = default;

} // namespace qel::classification
