//go:build windows && amd64

package temz

import (
	"fmt"
	"sync"
	"syscall"
	"unsafe"
)

var (
	opening   sync.Once
	openError error
)

// open loads the library when it is first needed.
func open() error {
	opening.Do(func() { openError = openFor(HeaderVersion) })
	return openError
}

// openFor loads the library for a version. One that serves it has all functions of its header.
func openFor(header Version) error {
	if programError != nil {
		return programError
	}
	if err := temzCheckVersion.Find(); err != nil {
		return err
	}
	return failed("open", checkVersion(header))
}

// statusOf takes what a function of the library gives for a status.
func statusOf(result, _ uintptr, _ error) Status {
	return Status(result)
}

// A Version is that of a header or a library: major, minor and patch in 8, 12 and 12 bits.
type Version uint32

func (v Version) String() string {
	return fmt.Sprintf("%d.%d.%d", v>>24, v>>12&0xFFF, v&0xFFF)
}

// LibraryVersion gives the version of the library.
func LibraryVersion() (Version, error) {
	if err := open(); err != nil {
		return 0, err
	}
	version, _, _ := temzVersion.Call()
	return Version(version), nil
}

// CheckVersion tells whether the library serves a host that was made with a header of this version.
// That of this package is checked when the library is loaded.
func CheckVersion(header Version) error {
	if err := open(); err != nil {
		return err
	}
	return failed("check version", checkVersion(header))
}

func checkVersion(header Version) Status {
	return statusOf(temzCheckVersion.Call(uintptr(header)))
}

// utf16 gives a text to the library. One with a zero inside is refused, with EINVAL as by package os.
func utf16(call, text string) (*uint16, error) {
	units, err := syscall.UTF16PtrFromString(text)
	if err != nil {
		return nil, fmt.Errorf("temz: %s: %q: %w", call, text, err)
	}
	return units, nil
}

// textAt copies a text of the library's.
func textAt(units *uint16) string {
	length := 0
	for *(*uint16)(unsafe.Add(unsafe.Pointer(units), 2*length)) != 0 {
		length++
	}
	return syscall.UTF16ToString(unsafe.Slice(units, length))
}

// readText has a function fill a buffer that is large enough.
func readText(give func(buffer *uint16, capacity uintptr, length *uintptr) Status) (string, Status) {
	buffer := make([]uint16, textLength)
	for {
		var length uintptr
		switch status := give(&buffer[0], uintptr(len(buffer)), &length); status {
		case OK:
			return syscall.UTF16ToString(buffer), OK
		case BufferTooSmall:
			buffer = make([]uint16, length)
		default:
			return "", status
		}
	}
}
