//go:build windows && (386 || amd64)

package zentra3d

import (
	"errors"
	"fmt"
	"math"
	"os"
	"sync"
	"syscall"
	"unsafe"
)

// What the library tells its callback, and the answer that cancels.
const (
	codePercent    = 102
	progressCancel = 200
)

var (
	getRGBImage         = dll.NewProc("GetRGBImage")
	setRenderMsgTitle   = dll.NewProc("SetRenderMsgTitle")
	wideCharToMultiByte = kernel32.NewProc("WideCharToMultiByte")
	multiByteToWideChar = kernel32.NewProc("MultiByteToWideChar")
)

// Channels names up to three raw files of one stored size; an empty name is no such channel.
type Channels struct {
	Red, Green, Blue     string
	Width, Height, Depth int
	Floats               bool // samples are 32-bit floats, else bytes
	MaxDiagonal          int  // of the result, in voxels; 0: as large as it is stored
	KeepApart            bool // load a name again that is given twice
	// Progress is called with the percentage of the running phase; phases follow one another. An error that it
	// returns cancels, and is what Load returns.
	Progress func(percent float32) error
}

// Range is a range of values.
type Range struct{ Low, High float32 }

// A load that is running, for the callback.
type loading struct {
	progress func(percent float32) error
	err      error
	panicked interface{}
}

var (
	callbackOnce sync.Once
	callback     uintptr // Windows callbacks of Go are never released, so there is one for all calls
	loads        sync.Map
	lastLoad     uintptr
	lastLoadLock sync.Mutex
)

func onProgress(user, code, value uintptr) (answer uintptr) {
	found, _ := loads.Load(user)
	load, ok := found.(*loading)
	if !ok || uint32(code) != codePercent { // the upper half of a register says nothing
		return 0
	}
	defer func() { // no panic may pass through the library
		if load.panicked = recover(); load.panicked != nil {
			answer = progressCancel
		}
	}()
	if load.err = load.progress(math.Float32frombits(uint32(value))); load.err != nil {
		return progressCancel
	}
	return 0
}

// Load makes a volume of channel files: RGB, or grey when all three names are the same. The range is the one to
// display. Errors: of a file that cannot be opened, of Progress, ErrMemory.
func Load(c Channels) (*Volume, Range, error) {
	var shown Range
	for _, length := range []int{c.Width, c.Height, c.Depth} {
		if length < 1 || length > 0x7FFF {
			return nil, shown, fmt.Errorf("zentra3d: %d x %d x %d: each length is 1 to 32767", c.Width, c.Height,
				c.Depth)
		}
	}
	var names [3]*byte
	for i, path := range []string{c.Red, c.Green, c.Blue} {
		var err error
		if names[i], err = channelName(path); err != nil {
			return nil, shown, err
		}
	}
	if names == [3]*byte{} {
		return nil, shown, errors.New("zentra3d: no channel file is named")
	}
	if err := Open(); err != nil {
		return nil, shown, err
	}
	diagonal := c.MaxDiagonal
	if diagonal <= 0 || diagonal > 0x7FFF {
		diagonal = 0x7FFF
	}
	load := &loading{progress: c.Progress}
	var token, function uintptr
	if c.Progress != nil {
		callbackOnce.Do(func() { callback = syscall.NewCallback(onProgress) })
		lastLoadLock.Lock()
		lastLoad++
		token, function = lastLoad, callback
		lastLoadLock.Unlock()
		loads.Store(token, load)
		defer loads.Delete(token)
	}
	address, _, _ := getRGBImage.Call(uintptr(unsafe.Pointer(names[0])), uintptr(unsafe.Pointer(names[1])),
		uintptr(unsafe.Pointer(names[2])), uintptr(c.Width), uintptr(c.Height), uintptr(c.Depth), 0, 0, 0,
		flag(!c.Floats), uintptr(diagonal), uintptr(unsafe.Pointer(&shown.High)),
		uintptr(unsafe.Pointer(&shown.Low)), 0, 0, token, function, flag(c.KeepApart))
	if load.panicked != nil {
		free3DData.Call(address)
		panic(load.panicked)
	}
	if address != 0 {
		return wrap(address), shown, nil
	}
	if load.err != nil {
		return nil, Range{}, load.err
	}
	return nil, Range{}, ErrMemory
}

func flag(value bool) uintptr {
	if value {
		return 1
	}
	return 0
}

// channelName is the path in the system's code page, which is all that the library takes. What that code page
// cannot say goes by its short name. A file that cannot be opened, or that somebody may write to, is an error here,
// before the library shows it to the user in a message box.
func channelName(path string) (*byte, error) {
	if path == "" {
		return nil, nil
	}
	wide, err := syscall.UTF16FromString(path)
	if err != nil {
		return nil, err
	}
	file, err := syscall.CreateFile(&wide[0], syscall.GENERIC_READ, syscall.FILE_SHARE_READ, nil,
		syscall.OPEN_EXISTING, syscall.FILE_ATTRIBUTE_NORMAL, 0)
	if err != nil {
		return nil, &os.PathError{Op: "open", Path: path, Err: err}
	}
	syscall.CloseHandle(file)
	if name := narrow(wide); name != nil {
		return name, nil
	}
	short := make([]uint16, 32768)
	length, err := syscall.GetShortPathName(&wide[0], &short[0], uint32(len(short)))
	if err == nil && int(length) < len(short) {
		if name := narrow(short[:length+1]); name != nil {
			return name, nil
		}
	}
	return nil, &os.PathError{Op: "open", Path: path, Err: errors.New("the name cannot be said in the system's code page")}
}

// narrow gives nil when the way back does not lead to the same text.
func narrow(wide []uint16) *byte {
	text := make([]byte, 4*len(wide))
	wideCharToMultiByte.Call(0, 0, uintptr(unsafe.Pointer(&wide[0])), uintptr(len(wide)),
		uintptr(unsafe.Pointer(&text[0])), uintptr(len(text)), 0, 0)
	back := make([]uint16, len(wide))
	count, _, _ := multiByteToWideChar.Call(0, 0, uintptr(unsafe.Pointer(&text[0])), ^uintptr(0),
		uintptr(unsafe.Pointer(&back[0])), uintptr(len(back)))
	if int(count) != len(wide) {
		return nil
	}
	for i := range wide {
		if wide[i] != back[i] {
			return nil
		}
	}
	return &text[0]
}

// SetMessageTitle sets the caption of the library's message boxes. Not while a load runs.
func SetMessageTitle(title string) error {
	wide, err := syscall.UTF16FromString(title)
	if err != nil {
		return err
	}
	text := narrow(wide)
	if text == nil {
		return errors.New("zentra3d: the title cannot be said in the system's code page")
	}
	if err := Open(); err != nil {
		return err
	}
	if copied, _, _ := setRenderMsgTitle.Call(uintptr(unsafe.Pointer(text))); copied == 0 {
		return ErrMemory
	}
	return nil
}
