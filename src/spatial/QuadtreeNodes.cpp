// The default constructors of the quadtree's small types, which every caller shares.

#include <qel/QuadtreeObject.h>
#include <qel/QuadtreeQuad.h>

namespace qel {

QuadtreeObject::QuadtreeObject() = default;

QuadtreeQuad::QuadtreeQuad() = default;

} // namespace qel
