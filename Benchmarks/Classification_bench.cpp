#include "Support.h"

#include <qel/classification/KMeansClassification.h>

using namespace qel;
using namespace bench;

namespace {

/// Noise leaves all ten iterations to do, and the labels: eleven passes and the statistics.
template <class T> void kMeans(benchmark::State& state, Shape const& shape, unsigned int classes)
{
    memory::InMemoryImage in, labels;
    fill(in, Voxel<T>::type, shape);
    Ref<classification::KMeansClassification> algorithm(classification::KMeansClassification::New());
    algorithm->input = &in;
    algorithm->numClasses = classes;
    algorithm->classifiedImage = &labels;
    algorithm->run();
    for (unsigned long x = 0; x < 1000; ++x)
        require(labels.getInternalBuffer()[x] >= 1 && labels.getInternalBuffer()[x] <= classes, "label");
    measure(state, *algorithm, shape, shape.voxels() * (sizeof(T) + 1));
}

} // namespace

int main(int argc, char** argv)
{
    forEachTypeAndShape([]<class T>(std::type_identity<T>, Shape const& shape) {
        std::string const suffix = std::string("/") + Voxel<T>::name + "/scalar/" + shape.name;
        registerRead(Voxel<T>::name, sizeof(T), shape);
        for (unsigned int const classes : {2u, 4u})
            add("KMeansClassification" + std::to_string(classes) + suffix,
                [=](benchmark::State& state) { kMeans<T>(state, shape, classes); });
    });
    return run(argc, argv);
}
