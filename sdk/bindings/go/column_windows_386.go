package zentra3d

import (
	"math"
	"syscall"
	"unsafe"
)

// A double takes two argument slots.
func halves(value float64) (low, high uintptr) {
	bits := math.Float64bits(value)
	return uintptr(uint32(bits)), uintptr(bits >> 32)
}

// callWithColumn calls a function that takes a column of a matrix by value.
func callWithColumn(function *syscall.LazyProc, m *Matrix, column [3]float64, first, second *float32, third float32) {
	a, b := halves(column[0])
	c, d := halves(column[1])
	e, f := halves(column[2])
	function.Call(uintptr(unsafe.Pointer(m)), a, b, c, d, e, f, uintptr(unsafe.Pointer(first)),
		uintptr(unsafe.Pointer(second)), floatArgument(third))
}
