//go:build !(windows && (386 || amd64))

package zentra3d

// The name below is not defined anywhere: this sentence is for whoever reads the compiler's message.
const _ = Zentra3DRendering_is_a_Windows_DLL_build_with_GOOS_windows_and_GOARCH_386_or_amd64
