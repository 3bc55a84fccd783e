#pragma once
// Joining of the pieces of a partitioned unstructured grid into one grid.

#include <vector>

#include <vtkSmartPointer.h>
#include <vtkType.h>
#include <vtkUnstructuredGrid.h>
#include <vtkXMLReader.h>

class vtkAlgorithm;

namespace program {

/// A reader of partitioned XML unstructured grids (.pvtu) that knows its pieces.
vtkSmartPointer<vtkXMLReader> partitionedGridReader();

/// How many points each piece has, in the order in which they follow in the reader's output; empty
/// for a reader that partitionedGridReader() did not make.
std::vector<vtkIdType> pointsOfPieces(vtkAlgorithm* reader);

struct JoinedGrid {
    vtkSmartPointer<vtkUnstructuredGrid> grid;
    vtkIdType joinedPoints = 0; ///< that had the place or id of one in another piece
    vtkIdType ghostCells = 0;   ///< left out, as another piece has them
    /// At borders between pieces, where one piece has several points at one place, so that
    /// coordinates do not tell which belong together.
    vtkIdType ambiguousPoints = 0;
    bool byGlobalIds = false;
    bool wrongGlobalIds = false; ///< one id is at points far apart, or twice in a piece
};

/// Makes one point of those that pieces share, and leaves out cells that are ghosts of others.
///
/// Points are the same if their global ids are; or, in a grid without or with wrong ones, if all
/// coordinates are equal and no piece has two there. The point of the piece that owns it stays;
/// else that of the first piece. Points and cells with global ids come out in the order of these,
/// so that the grid and every sum over it do not depend on how it was cut. O(n log n) for n points
/// and cells.
///
/// @param pieces  points in each piece, consecutive in the grid
JoinedGrid joinPieces(vtkUnstructuredGrid* grid, const std::vector<vtkIdType>& pieces);

} // namespace program
