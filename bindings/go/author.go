//go:build windows && amd64

package temz

import "unsafe"

// A CheckRequest is what is to be checked.
type CheckRequest struct {
	Script   string // a path
	Payload  string // the folder in which the sources of files stand; empty for none
	Previous string // the script of the version before; empty for none
}

// A Finding is one thing that is wrong with a script. Lines and columns count from 1, columns and
// lengths in units of UTF-16; where all three are 0, the file as a whole is meant.
type Finding struct {
	Severity   Severity
	EndsRun    bool // a run surely ends half-way because of this, whatever the machine is like
	Line       int  // in File
	Column     int
	Length     int    // of what is wrong
	Code       string // "TZ203"; stays the same in all versions
	File       string // the script's path, as it was given, or the previous one's
	Text       string // what is wrong, in a sentence
	Help       string // how to mend it; may be empty
	SourceLine string // the whole line; empty for the file as a whole
}

func findingOf(raw *rawFinding) Finding {
	return Finding{
		Severity:   raw.severity,
		EndsRun:    raw.endsRun != 0,
		Line:       int(raw.line),
		Column:     int(raw.column),
		Length:     int(raw.length),
		Code:       textAt(raw.code),
		File:       textAt(raw.file),
		Text:       textAt(raw.text),
		Help:       textAt(raw.help),
		SourceLine: textAt(raw.sourceLine),
	}
}

// Check reads a script as the engine would and gives all that is wrong with it, in the order of the
// places. Nothing is run.
func Check(request CheckRequest) ([]Finding, error) {
	if err := open(); err != nil {
		return nil, err
	}
	found := new(checking)
	raw := rawCheckRequest{user: hold(found), finding: callbacks.finding}
	raw.size = uint32(unsafe.Sizeof(raw))
	defer raw.user.release()
	for place, path := range map[**uint16]string{
		&raw.script: request.Script, &raw.payload: request.Payload, &raw.previous: request.Previous,
	} {
		if path == "" {
			continue // null
		}
		var err error
		if *place, err = utf16("check", path); err != nil {
			return nil, err
		}
	}
	if err := failed("check", statusOf(temzCheck.Call(uintptr(unsafe.Pointer(&raw))))); err != nil {
		return nil, err
	}
	return found.findings, nil
}

// A FindingKind is what is known about a code of Check's.
type FindingKind struct {
	Severity Severity
	Code     string // "TZ203"
	Meaning  string // what is wrong, in a sentence
	Remedy   string // how it is mended, in a sentence
}

func findingKindOf(raw *rawFindingKind) FindingKind {
	return FindingKind{
		Severity: raw.severity,
		Code:     textAt(raw.code),
		Meaning:  textAt(raw.meaning),
		Remedy:   textAt(raw.remedy),
	}
}

// FindingKinds gives what Check can find, in the order of the codes.
func FindingKinds() ([]FindingKind, error) {
	if err := open(); err != nil {
		return nil, err
	}
	var kinds []FindingKind
	for {
		var raw rawFindingKind
		raw.size = uint32(unsafe.Sizeof(raw))
		switch status := statusOf(temzGetFindingKind.Call(uintptr(len(kinds)), uintptr(unsafe.Pointer(&raw)))); status {
		case OK:
			kinds = append(kinds, findingKindOf(&raw))
		case NotFound:
			return kinds, nil
		default:
			return nil, failed("get finding kind", status)
		}
	}
}

// Schema gives the XML Schema (1.0) of install scripts, to be saved as UTF-8.
func Schema() (string, error) {
	if err := open(); err != nil {
		return "", err
	}
	text, status := readText(func(buffer *uint16, capacity uintptr, length *uintptr) Status {
		return statusOf(temzSchema.Call(uintptr(unsafe.Pointer(buffer)), capacity,
			uintptr(unsafe.Pointer(length))))
	})
	return text, failed("schema", status)
}
