// What a host in Go sees of failures. Run in the folder samples/data. Prints the checks that fail, and ends with their
// number.
package main

import (
	"errors"
	"fmt"
	"io/fs"
	"math"
	"os"
	"syscall"
	"unsafe"

	"zentra3d"
)

var failed int

func check(name string, passed bool, seen ...interface{}) {
	if !passed {
		failed++
		fmt.Println(name, seen)
	}
}

func files() zentra3d.Channels {
	return zentra3d.Channels{Red: "red.raw", Green: "green.raw", Blue: "blue.raw", Width: 48, Height: 40, Depth: 32}
}

// privateBytes is the memory that the process has for itself.
func privateBytes() int {
	var counters struct {
		size, faults uint32
		bytes        [8]uintptr
	}
	counters.size = uint32(unsafe.Sizeof(counters))
	process, _ := syscall.GetCurrentProcess()
	syscall.NewLazyDLL("kernel32.dll").NewProc("K32GetProcessMemoryInfo").Call(uintptr(process),
		uintptr(unsafe.Pointer(&counters)), unsafe.Sizeof(counters))
	return int(counters.bytes[6])
}

func growth(times int, body func()) int {
	for i := 0; i < times; i++ {
		body()
	}
	before := privateBytes()
	for i := 0; i < times; i++ {
		body()
	}
	return privateBytes() - before
}

func loadErrors() {
	channels := files()
	channels.Green = "none.raw"
	_, _, err := zentra3d.Load(channels)
	check("a file that is not there", errors.Is(err, fs.ErrNotExist), err)

	writer, err := os.OpenFile("green.raw", os.O_WRONLY, 0)
	check("a file to write to", err == nil, err)
	_, _, err = zentra3d.Load(files())
	check("a file that somebody may write to", errors.Is(err, syscall.Errno(32)), err)
	writer.Close()

	_, _, err = zentra3d.Load(zentra3d.Channels{Width: 1, Height: 1, Depth: 1})
	check("no file at all", err != nil, err)

	channels = files()
	channels.Depth = 0
	_, _, err = zentra3d.Load(channels)
	check("a size of nothing", err != nil, err)

	mine := errors.New("mine")
	channels = files()
	channels.Progress = func(float32) error { return mine }
	_, _, err = zentra3d.Load(channels)
	check("what Progress returns", err == mine, err)

	func() {
		defer func() { seen := recover(); check("a panic", seen == mine, seen) }()
		channels.Progress = func(float32) error { panic(mine) }
		zentra3d.Load(channels)
		check("a panic comes through", false)
	}()

	channels.Progress = func(percent float32) error {
		if percent > 90 {
			return mine
		}
		return nil
	}
	grown := growth(200, func() { zentra3d.Load(channels) })
	check("cancelled loads are released", grown < 8e6, grown)
}

func otherNames() {
	const name = "\u0442\u0435\u0441\u0442-\u65e5\u672c.raw"
	data, _ := os.ReadFile("red.raw")
	os.WriteFile(name, data, 0o666)
	defer os.Remove(name)
	channels := files()
	channels.Red, channels.Green, channels.Blue = name, name, name
	volume, _, err := zentra3d.Load(channels)
	check("a name outside the code page", err == nil, err)
	if err == nil {
		volume.Close()
	}
}

func pictures() {
	turn := zentra3d.RotationMatrix(zentra3d.XYZ, zentra3d.Angles{X: 30, Y: 40, Z: 50})
	angles := turn.AnglesXYZ()
	check("angles come back", math.Abs(float64(angles.X)-30) < 1e-4 && math.Abs(float64(angles.Z)-50) < 1e-4, angles)
	angles = zentra3d.ChangeOrder(zentra3d.XYZ, zentra3d.AxisOrder{2, 0, 1}, angles)
	there := zentra3d.RotationMatrix(zentra3d.AxisOrder{2, 0, 1}, angles)
	check("the same rotation in another order", math.Abs(there[5]-turn[5]) < 1e-6, there, turn)
	again, x, y := zentra3d.AnglesXY(turn[2], turn[5], turn[8], 50)
	check("doubles by value", math.Abs(float64(x)-30)+math.Abs(float64(y)-40)+math.Abs(again[0]-turn[0]) < 1e-4, x, y)
	check("gamma", zentra3d.AdjustGamma(&[256]byte{7: 9}, 7) == 9)
	check("scales", zentra3d.SubvolumeConvert(10, 50, 100, false) == 5)
	check("title", zentra3d.SetMessageTitle("a host") == nil)

	volume, err := zentra3d.NewVolume(48, 40, 32, 1, make([]byte, 48*40*32))
	check("a volume", err == nil, err)
	_, err = zentra3d.NewVolume(48, 40, 32, 1, make([]byte, 7))
	check("too few voxels", err != nil)
	_, err = volume.Project(turn.Floats(), zentra3d.View{Mode: 7})
	check("no such mode", err != nil)
	_, err = volume.Project(zentra3d.Rotation{float32(math.NaN())}, zentra3d.View{})
	check("no rotation", err != nil && err != zentra3d.ErrMemory, err)
	picture, err := volume.Project(turn.Floats(), zentra3d.View{Low: 1, High: 255})
	check("nothing in the window", err == nil && picture.Pixels[0] == zentra3d.NoValue, err)
	grown := growth(400, func() { volume.Project(turn.Floats(), zentra3d.View{High: 255}) })
	check("pictures are released", grown < 8e6, grown)
	volume.Close()
	volume.Close()
	_, err = volume.Project(turn.Floats(), zentra3d.View{})
	check("a closed volume", err == zentra3d.ErrClosed, err)
}

func main() {
	loadErrors()
	otherNames()
	pictures()
	os.Exit(failed)
}
