//go:build windows && (386 || amd64)

// Package zentra3d renders 3D image volumes with Zentra3DRendering.dll. It needs no cgo; 386 takes the 32-bit DLL, amd64
// the 64-bit one:
//
//	GOOS=windows GOARCH=386 go build
//
// The DLL lies beside the program. Its header, Zentra3DRendering.h, is the reference for what each function does.
package zentra3d

import (
	"errors"
	"fmt"
	"math"
	"runtime"
	"syscall"
	"unsafe"
)

// Mode says what a projection shows.
type Mode int16

const (
	Maximum Mode = iota
	Minimum
	Sum
	Surface // the first surface, or layered surfaces where View.Extra is not 0
	Blend
	Contrast
	FirstHit
)

// What a pixel without a contribution holds, in most modes and in Minimum.
const (
	NoValue   = -math.MaxFloat32
	NoMinimum = math.MaxFloat32
)

// ErrMemory reports that the library ran short of memory.
var ErrMemory = errors.New("zentra3d: memory is short")

// ErrClosed reports a volume that has been closed.
var ErrClosed = errors.New("zentra3d: the volume is closed")

var (
	dll              = syscall.NewLazyDLL("Zentra3DRendering.dll")
	free3DData       = dll.NewProc("Free3DData")
	getRotDim        = dll.NewProc("GetRotDim")
	getRotProjection = dll.NewProc("GetRotProjection")
	globalAlloc3D    = dll.NewProc("GlobalAlloc3D")
	globalFree3D     = dll.NewProc("GlobalFree3D")
	globalLock3D     = dll.NewProc("GlobalLock3D")
	globalUnlock3D   = dll.NewProc("GlobalUnlock3D")

	// Single images, for hosts that put volumes together from their own slices.
	GlobalAlloc2D  = dll.NewProc("GlobalAlloc2D")
	GlobalFree2D   = dll.NewProc("GlobalFree2D")
	GlobalLock2D   = dll.NewProc("GlobalLock2D")
	GlobalUnlock2D = dll.NewProc("GlobalUnlock2D")

	kernel32     = syscall.NewLazyDLL("kernel32.dll")
	globalHandle = kernel32.NewProc("GlobalHandle")
	globalUnlock = kernel32.NewProc("GlobalUnlock")
	globalFree   = kernel32.NewProc("GlobalFree")
)

// The library's record of a volume.
type volume3D struct {
	slices, sliceRows    uintptr
	width, height, depth uint16
}

// memory is Go's view of an address that the library gave out.
func memory(address uintptr) unsafe.Pointer { return *(*unsafe.Pointer)(unsafe.Pointer(&address)) }

func floatArgument(value float32) uintptr { return uintptr(math.Float32bits(value)) }

// Open loads the DLL and says why it cannot be loaded. Without it the first call does so; those that return no
// error then panic.
func Open() error {
	if err := dll.Load(); err != nil {
		return fmt.Errorf("zentra3d: %w", err)
	}
	return nil
}

// Volume is a stack of equal slices. Close releases it. No two calls may use one volume at the same time.
type Volume struct {
	record *volume3D
}

// NewVolume copies voxels, x fastest, then y, then z: bytesPerVoxel is 1 for grey, 3 for red, green, blue.
func NewVolume(width, height, depth, bytesPerVoxel int, voxels []byte) (*Volume, error) {
	for _, length := range []int{width, height, depth} {
		if length < 1 || length > 0x7FFF {
			return nil, fmt.Errorf("zentra3d: %d x %d x %d: each length is 1 to 32767", width, height, depth)
		}
	}
	if bytesPerVoxel != 1 && bytesPerVoxel != 3 {
		return nil, fmt.Errorf("zentra3d: %d bytes per voxel: only 1 and 3 can be rendered", bytesPerVoxel)
	}
	sliceBytes := int64(width) * int64(height) * int64(bytesPerVoxel)
	if int64(len(voxels)) != sliceBytes*int64(depth) {
		return nil, fmt.Errorf("zentra3d: %d bytes for %d voxels of %d", len(voxels), sliceBytes*int64(depth)/
			int64(bytesPerVoxel), bytesPerVoxel)
	}
	if err := Open(); err != nil {
		return nil, err
	}
	address, _, _ := globalAlloc3D.Call(uintptr(width), uintptr(height), uintptr(depth), uintptr(bytesPerVoxel))
	tables, _, _ := globalLock3D.Call(address)
	if tables == 0 {
		globalFree3D.Call(address)
		return nil, ErrMemory
	}
	for z, rows := range unsafe.Slice((**unsafe.Pointer)(memory(tables)), depth) {
		copy(unsafe.Slice((*byte)(*rows), sliceBytes), voxels[int64(z)*sliceBytes:])
	}
	globalUnlock3D.Call(address)
	return wrap(address), nil
}

func wrap(address uintptr) *Volume {
	v := &Volume{(*volume3D)(memory(address))}
	runtime.SetFinalizer(v, (*Volume).Close)
	return v
}

// Close releases the volume. A second call does nothing.
func (v *Volume) Close() error {
	if v.record != nil {
		free3DData.Call(uintptr(unsafe.Pointer(v.record)))
		v.record = nil
		runtime.SetFinalizer(v, nil)
	}
	return nil
}

// Size gives the volume's lengths in voxels; zeroes when it is closed.
func (v *Volume) Size() (width, height, depth int) {
	if v.record == nil {
		return 0, 0, 0
	}
	return int(v.record.width), int(v.record.height), int(v.record.depth)
}

// Box is a crop box in voxels, 1-based, both ends inclusive.
type Box struct{ X0, X1, Y0, Y1, Z0, Z1 int }

// View says how to render: voxels from Low to High count (of RGB volumes, the sum of the channels). Extra is the
// attenuation of layered surfaces or the transparency of blends. A nil Crop takes the whole volume.
type View struct {
	Mode             Mode
	Low, High, Extra float32
	Crop             *Box
}

// Picture has Width * Height pixels of three floats, the top row first.
type Picture struct {
	Width, Height int
	Pixels        []float32
}

// ProjectionSize is the size that Project will give.
func (v *Volume) ProjectionSize(rotation Rotation) (width, height int, err error) {
	if v.record == nil {
		return 0, 0, ErrClosed
	}
	var size [2]uint16
	getRotDim.Call(uintptr(unsafe.Pointer(v.record)), uintptr(unsafe.Pointer(&rotation)), 0, 0, 0, 0, 0, 0,
		uintptr(unsafe.Pointer(&size[0])), uintptr(unsafe.Pointer(&size[1])), 0)
	runtime.KeepAlive(v)
	if size[0] == 0 {
		return 0, 0, errors.New("zentra3d: the rotation is not finite or too large")
	}
	return int(size[0]), int(size[1]), nil
}

// Project renders a rotated projection.
func (v *Volume) Project(rotation Rotation, view View) (*Picture, error) {
	if view.Mode < Maximum || view.Mode > FirstHit {
		return nil, fmt.Errorf("zentra3d: there is no mode %d", view.Mode)
	}
	if _, _, err := v.ProjectionSize(rotation); err != nil {
		return nil, err
	}
	crop := view.Crop
	if crop == nil {
		crop = &Box{1, int(v.record.width), 1, int(v.record.height), 1, int(v.record.depth)}
	}
	var size [2]uint16
	address, _, _ := getRotProjection.Call(uintptr(unsafe.Pointer(v.record)), uintptr(unsafe.Pointer(&rotation)),
		uintptr(view.Mode), uintptr(crop.X0), uintptr(crop.X1), uintptr(crop.Y0), uintptr(crop.Y1),
		uintptr(crop.Z0), uintptr(crop.Z1), floatArgument(view.High), floatArgument(view.Low),
		floatArgument(view.Extra), uintptr(unsafe.Pointer(&size[0])), uintptr(unsafe.Pointer(&size[1])), 0)
	runtime.KeepAlive(v)
	if address == 0 {
		return nil, ErrMemory
	}
	picture := &Picture{int(size[0]), int(size[1]), make([]float32, 3*int(size[0])*int(size[1]))}
	copy(picture.Pixels, unsafe.Slice((*float32)(memory(address)), len(picture.Pixels)))
	block, _, _ := globalHandle.Call(address) // the address is not the handle
	globalUnlock.Call(block)
	globalFree.Call(block)
	return picture, nil
}
