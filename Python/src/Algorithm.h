#pragma once

#include "Kinds.h"
#include "NumpyImage.h"

#include <qel/AlgoInfo.h>
#include <qel/BaseAlgorithm.h>
#include <qel/Exception.h>
#include <qel/Ref.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace binding {

class RunningRun;

/// A property of an algorithm class.
struct PropertyRecord
{
    std::string name;
    bool isOutput = false;
    Kind const* kind = nullptr;
    unsigned long index = 0;
    /// For a public member that is no listed property.
    qel::BaseProperty& (*member)(qel::BaseAlgorithm&) = nullptr;
    /// What an array is taken for that does not say what it is: learnt from what the rules of the class ask for.
    qel::Interpretations assumed = qel::QEL_VALUE;
    /// The type of a new output image, where the rules take only some; else that of the first input image.
    std::optional<qel::VoxelTypes> newType;

    qel::BaseProperty& of(qel::BaseAlgorithm& algorithm) const;
};

/// What is known of an algorithm class, from one of its objects.
struct AlgorithmRecord
{
    std::string name;
    std::string nameSpace;
    qel::AlgoInfo* info = nullptr;
    std::vector<PropertyRecord> properties;
    py::dict indexOf; ///< by name
    py::object resultType;
    std::size_t numOfResults = 0;
    bool isProbed = false; ///< the types of new outputs are known
};

/// The records of all registered algorithms, made when they are first asked for.
std::vector<std::unique_ptr<AlgorithmRecord>> const& allRecords();
AlgorithmRecord& recordOf(std::string const& name);

/// What Python brings in: classes that are written there.
struct PythonSide
{
    py::object imageClass;     ///< an array with its calibration
    py::object makeResultType; ///< (algorithm, fields) to a class of tuples
    py::object refuse;         ///< (algorithm, property, reason, remedy) to an exception
    py::object cancelled;      ///< (algorithm) to an exception
    py::object libraryError;   ///< (class name, text, levels) to an exception
    py::object asProgress;     ///< what was given as progress= to a function of the percentage
};
PythonSide& pythonSide();

/// How a run is made.
struct RunOptions
{
    py::object out;      ///< for the one output image; null where not given
    py::object progress; ///< null where not given
    std::optional<qel::VoxelTypes> dtype;
    std::optional<int> threads;
    std::optional<int> extraMemory;
    std::optional<qel::OptimLevelType> level; ///< automatic where there is none

    /// Takes the argument if it is one of these.
    bool take(AlgorithmRecord const& record, py::handle name, py::handle value);
};

/// An algorithm object with what Python gave to it.
class Algorithm
{
public:
    explicit Algorithm(AlgorithmRecord& record);
    Algorithm(Algorithm const&) = delete;
    Algorithm& operator=(Algorithm const&) = delete;
    ~Algorithm();

    AlgorithmRecord const& record() const { return m_record; }

    /// The index of a property. Raises AttributeError or PropertyError with the nearest name.
    std::size_t indexOf(py::handle name) const;
    void set(std::size_t index, py::handle value);
    py::object get(std::size_t index) const;

    /// Runs, and gives back the results: nothing, the only one, or a tuple with names.
    py::object run(RunOptions const& options);

    /// Asks a run to stop, from any thread. False where none is under way.
    bool cancel();
    bool isRunning() const { return m_run.load() != nullptr; }
    double progress() const { return m_algorithm->getProgress(); }
    qel::BaseAlgorithm& algorithm() const { return *m_algorithm; }

private:
    struct Slot
    {
        py::object given; ///< null where nothing was given; None where nothing is wanted
        std::shared_ptr<NumpyImage> image;
        Kept kept;
        bool isWrapped = false; ///< given as an image with calibration
        bool isBool = false;
    };

    [[noreturn]] void refuse(std::size_t index, std::string const& reason, std::string const& remedy) const;
    void setImage(std::size_t index, py::handle value);
    std::shared_ptr<NumpyImage> imageOver(std::size_t index, py::handle array, bool isWritten, bool& isBool) const;
    void readCalibration(std::size_t index);
    void prepareOutputs(RunOptions const& options);
    void connectImages();
    void probe();
    void refuseOverlaps() const;
    bool adaptType(qel::Exception const& error);
    bool adaptInterpretation(qel::Exception const& error);
    void execute(RunOptions const& options, RunningRun& run);
    void executeHere(RunningRun& run, std::optional<int> threads);
    void executePolled(RunningRun& run, std::optional<int> threads, py::object const& progress);
    void computeWith(std::optional<int> threads);
    py::object results();
    py::object resultOf(std::size_t index);

    AlgorithmRecord& m_record;
    qel::Ref<qel::BaseAlgorithm> m_algorithm;
    std::vector<Slot> m_slots;
    bool m_anyWrapped = false;
    std::atomic<RunningRun*> m_run{nullptr};
    std::atomic<bool> m_isBusy{false};
};

/// Raises the Python form of an error of the library.
void raise(qel::Exception const& error);

} // namespace binding
