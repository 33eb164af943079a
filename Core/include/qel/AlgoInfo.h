#pragma once

#include <qel/Export.h>
#include <qel/String.h>

namespace qel {

class AlgoInfoPrivate;
class BaseAlgorithm;

/// Describes an algorithm class, and creates its objects by name.
class QEL_API AlgoInfo
{
public:
    AlgoInfo(char const* name, char const* libName, BaseAlgorithm* (*creator)());
    AlgoInfo(AlgoInfo const& other) = delete;
    AlgoInfo& operator=(AlgoInfo const& other) = delete;
    ~AlgoInfo();

    /// The name of the class, such as "BoxFilter2D".
    String getName() const;
    /// The name of the library that has the class.
    String getLibName() const;
    /// A new algorithm of the class, owned by the caller (see Ref and Object::destroy).
    BaseAlgorithm* createInstance() const;

    /// The registered class of that name. Throws InvalidCall "The className " name " does not exist" where there is
    /// none.
    static AlgoInfo* fromName(char const* name);

    /// How many classes are registered.
    static unsigned long getNumOfAlgorithms();
    /// The registered class of that index, in no particular order. The index is not checked.
    static AlgoInfo* fromIndex(unsigned long index);

private:
    friend class AlgoInfoPrivate;
    AlgoInfoPrivate* m_private;
};

} // namespace qel
