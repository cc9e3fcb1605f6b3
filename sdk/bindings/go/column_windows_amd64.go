package zentra3d

import (
	"math"
	"syscall"
	"unsafe"
)

// callWithColumn calls a function that takes a column of a matrix by value. A double takes one argument slot.
func callWithColumn(function *syscall.LazyProc, m *Matrix, column [3]float64, first, second *float32, third float32) {
	function.Call(uintptr(unsafe.Pointer(m)), uintptr(math.Float64bits(column[0])),
		uintptr(math.Float64bits(column[1])), uintptr(math.Float64bits(column[2])), uintptr(unsafe.Pointer(first)),
		uintptr(unsafe.Pointer(second)), floatArgument(third))
}
