#ifndef QEL_QELDATAHANDLING_H
#define QEL_QELDATAHANDLING_H

/// @file
/// The whole library.

#include <qel/Doublet.h>
#include <qel/FloatQELVector.h>
#include <qel/FloatQELVectorComponent.h>
#include <qel/FloatQELVectorConcrete.h>
#include <qel/IntQELVector.h>
#include <qel/LineSegment2D.h>
#include <qel/NumericalUtils.h>
#include <qel/ParametricCurve.h>
#include <qel/Point.h>
#include <qel/QELMatrix3base.h>
#include <qel/QELMatrix4.h>
#include <qel/QELVector.h>
#include <qel/QuadtreeBucket.h>
#include <qel/QuadtreeObject.h>
#include <qel/QuadtreeQuad.h>
#include <qel/TensorEigenizer.h>
#include <qel/TripletBase.h>
#include <qel/TripletQELVector.h>
#include <qel/Vector.h>

#endif
