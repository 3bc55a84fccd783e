#ifndef QEL_PROGRAM_PARTITIONEDLEGACY_H
#define QEL_PROGRAM_PARTITIONEDLEGACY_H

/// @file
/// What a partitioned legacy VTK file says of its pieces.

#include <string>
#include <vector>

namespace program {

struct PartitionedLegacy {
    std::string type;                ///< of the pieces, such as "vtkImageData"
    std::vector<std::string> pieces; ///< paths of their files

    /// Whether VTK's own reader can put pieces of this type together.
    bool isPutTogetherByVtk() const;
};

/// @throws UserError  if the file is damaged
PartitionedLegacy readPartitionedLegacy(const std::string& path);

} // namespace program

#endif
