#pragma once

#include <qel/Interpretations.h>
#include <qel/VoxelTypes.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// What the command line says of one image: `PATH[,KEY=VALUE]...`, `@OTHER[,save=PATH]` or `null`.
///
/// A comma starts a key only where letters and "=" follow, so that a path may hold commas.
struct ImageArgument
{
    /// What an image can be on the command line, which decides the keys that it takes.
    enum class Role
    {
        Input,     ///< interpretation, type, spacing, origin, unit
        Output,    ///< type, size, interpretation
        InOut,     ///< read and changed: the keys of an input, and save
        Conversion ///< written only: type, interpretation
    };

    bool null = false;
    std::string path;  ///< empty for `null` and `@OTHER`
    std::string other; ///< the property whose image this one is
    std::string save;  ///< where to store it, beside what `path` says
    std::optional<qel::Interpretations> interpretation;
    std::optional<qel::VoxelTypes> type;
    std::optional<std::array<double, 3>> spacing;
    std::optional<std::array<double, 3>> origin;
    std::optional<std::string> unit;
    std::array<unsigned long, 5> size{};

    /// Throws UsageError.
    static ImageArgument parse(std::string const& text, Role role);
};

/// The ten types of voxels that files and the command line know, and their names: "uint8" ... "float64".
std::vector<std::string> const& voxelTypeNames();
/// Throws UsageError with the nearest name.
qel::VoxelTypes voxelTypeFromName(std::string const& name);
/// "complex float32" and "complex float64" for the types beyond the ten.
std::string nameOf(qel::VoxelTypes type);

/// "binary", "label", "value".
std::string nameOf(qel::Interpretations interpretation);

} // namespace host
