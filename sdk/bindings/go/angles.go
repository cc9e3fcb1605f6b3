//go:build windows && (386 || amd64)

package zentra3d

import "unsafe"

// Axis indexes of an AxisOrder.
const (
	X int16 = iota
	Y
	Z
)

// AxisOrder is the order of the three factors of a rotation, leftmost first.
type AxisOrder [3]int16

// XYZ is the usual order.
var XYZ = AxisOrder{X, Y, Z}

// Matrix is a rotation in doubles, row by row, as the angle functions use it.
type Matrix [9]float64

// Rotation is a rotation in floats, as projections use it.
type Rotation [9]float32

// Floats makes a rotation for projections.
func (m Matrix) Floats() (r Rotation) {
	for i, value := range m {
		r[i] = float32(value)
	}
	return r
}

var (
	adjustGamma        = dll.NewProc("AdjustGamma")
	changeOrder        = dll.NewProc("ChangeOrder")
	createRotateMatrix = dll.NewProc("CreateRotateMatrix")
	getAngleXY         = dll.NewProc("GetAngleXY")
	getAngleXYZ        = dll.NewProc("GetAngleXYZ")
	getAngleYZ         = dll.NewProc("GetAngleYZ")
	getAngleYZX        = dll.NewProc("GetAngleYZX")
	getAngleZX         = dll.NewProc("GetAngleZX")
	getAngleZXY        = dll.NewProc("GetAngleZXY")
	subvolumeConvert   = dll.NewProc("SubvolumeConvert")
)

// Angles are degrees about the three axes. A positive Y angle turns Z towards -X.
type Angles struct{ X, Y, Z float32 }

// RotationMatrix is the product of one rotation about each axis, leftmost factor first.
func RotationMatrix(order AxisOrder, angles Angles) (m Matrix) {
	createRotateMatrix.Call(uintptr(unsafe.Pointer(&m)), uintptr(unsafe.Pointer(&order)), floatArgument(angles.X),
		floatArgument(angles.Y), floatArgument(angles.Z))
	return m
}

// AnglesXYZ are the angles of a matrix in the order X, Y, Z.
func (m Matrix) AnglesXYZ() (a Angles) {
	getAngleXYZ.Call(uintptr(unsafe.Pointer(&m)), uintptr(unsafe.Pointer(&a.X)), uintptr(unsafe.Pointer(&a.Y)),
		uintptr(unsafe.Pointer(&a.Z)))
	return a
}

// AnglesZXY are the angles of a matrix in the order Z, X, Y.
func (m Matrix) AnglesZXY() (a Angles) {
	getAngleZXY.Call(uintptr(unsafe.Pointer(&m)), uintptr(unsafe.Pointer(&a.X)), uintptr(unsafe.Pointer(&a.Y)),
		uintptr(unsafe.Pointer(&a.Z)))
	return a
}

// AnglesYZX are the angles of a matrix in the order Y, Z, X.
func (m Matrix) AnglesYZX() (a Angles) {
	getAngleYZX.Call(uintptr(unsafe.Pointer(&m)), uintptr(unsafe.Pointer(&a.X)), uintptr(unsafe.Pointer(&a.Y)),
		uintptr(unsafe.Pointer(&a.Z)))
	return a
}

// AnglesXY gives the X and Y angles of column 2 of a matrix, and the matrix of these two with another Z angle.
func AnglesXY(m02, m12, m22 float64, angleZ float32) (m Matrix, angleX, angleY float32) {
	callWithColumn(getAngleXY, &m, [3]float64{m02, m12, m22}, &angleX, &angleY, angleZ)
	return m, angleX, angleY
}

// AnglesZX gives the X and Z angles of column 1 of a matrix, and the matrix of these two with another Y angle.
func AnglesZX(m01, m11, m21 float64, angleY float32) (m Matrix, angleX, angleZ float32) {
	callWithColumn(getAngleZX, &m, [3]float64{m01, m11, m21}, &angleX, &angleZ, angleY)
	return m, angleX, angleZ
}

// AnglesYZ gives the Y and Z angles of column 0 of a matrix, and the matrix of these two with another X angle.
func AnglesYZ(m00, m10, m20 float64, angleX float32) (m Matrix, angleY, angleZ float32) {
	callWithColumn(getAngleYZ, &m, [3]float64{m00, m10, m20}, &angleY, &angleZ, angleX)
	return m, angleY, angleZ
}

// ChangeOrder gives the angles of the same rotation in another axis order.
func ChangeOrder(from, to AxisOrder, angles Angles) Angles {
	changeOrder.Call(uintptr(unsafe.Pointer(&from)), uintptr(unsafe.Pointer(&to)), uintptr(unsafe.Pointer(&angles.X)),
		uintptr(unsafe.Pointer(&angles.Y)), uintptr(unsafe.Pointer(&angles.Z)))
	return angles
}

// AdjustGamma looks a grey level up in a curve.
func AdjustGamma(curve *[256]byte, level float32) byte {
	result, _, _ := adjustGamma.Call(uintptr(unsafe.Pointer(curve)), floatArgument(level))
	return byte(result)
}

// SubvolumeConvert converts a coordinate from one scale to another.
func SubvolumeConvert(value, newScale, oldScale int32, roundUp bool) int16 {
	result, _, _ := subvolumeConvert.Call(uintptr(value), uintptr(newScale), uintptr(oldScale), flag(roundUp))
	return int16(result) // the upper half says nothing
}
