// Renders a volume in every mode and loads one from files. Run it in the folder samples/data.
package main

import (
	"encoding/binary"
	"fmt"
	"hash/fnv"
	"log"
	"os"

	"zentra3d"
)

func print(name string, volume *zentra3d.Volume, view zentra3d.View) {
	matrix := zentra3d.RotationMatrix(zentra3d.XYZ, zentra3d.Angles{X: 30, Y: 40, Z: 50})
	picture, err := volume.Project(matrix.Floats(), view)
	check(err)
	checksum := fnv.New32a()
	check(binary.Write(checksum, binary.LittleEndian, picture.Pixels))
	fmt.Printf("%-9s %2d x %2d  %08X\n", name, picture.Width, picture.Height, checksum.Sum32())
}

func check(err error) {
	if err != nil {
		log.Fatal(err)
	}
}

func main() {
	voxels, err := os.ReadFile("grey.raw")
	check(err)
	volume, err := zentra3d.NewVolume(48, 40, 32, 1, voxels)
	check(err)
	defer volume.Close()
	print("maximum", volume, zentra3d.View{Mode: zentra3d.Maximum, Low: 0, High: 255})
	print("minimum", volume, zentra3d.View{Mode: zentra3d.Minimum, Low: 1, High: 255})
	print("sum", volume, zentra3d.View{Mode: zentra3d.Sum, Low: 0, High: 255})
	print("surface", volume, zentra3d.View{Mode: zentra3d.Surface, Low: 60, High: 256})
	print("layers", volume, zentra3d.View{Mode: zentra3d.Surface, Low: 60, High: 256, Extra: 0.5})
	print("blend", volume, zentra3d.View{Mode: zentra3d.Blend, Low: 0, High: 255, Extra: 0.5})
	print("contrast", volume, zentra3d.View{Mode: zentra3d.Contrast, Low: 0, High: 256})
	print("first hit", volume, zentra3d.View{Mode: zentra3d.FirstHit, Low: 60, High: 255})

	files := zentra3d.Channels{Red: "red.raw", Green: "green.raw", Blue: "blue.raw", Width: 48, Height: 40, Depth: 32, MaxDiagonal: 60}
	colour, shown, err := zentra3d.Load(files)
	check(err)
	defer colour.Close()
	width, height, depth := colour.Size()
	fmt.Printf("loaded    %d x %d x %d, display range %.0f to %.0f\n", width, height, depth, shown.Low, shown.High)
	print("colour", colour, zentra3d.View{Mode: zentra3d.Maximum, Low: 0, High: 765})

	files.Progress = func(percent float32) error {
		if percent < 50 {
			return nil
		}
		return fmt.Errorf("cancelled at %.0f %%", percent) // an error cancels, and is what Load returns
	}
	_, _, err = zentra3d.Load(files)
	fmt.Println(err)
}
