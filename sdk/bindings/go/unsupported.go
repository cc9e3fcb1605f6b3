//go:build !(windows && 386)

package zentra3d

// The name below is not defined anywhere: this sentence is for whoever reads the compiler's message.
const _ = Zentra3DRendering_is_a_32bit_Windows_DLL_build_with_GOOS_windows_and_GOARCH_386
