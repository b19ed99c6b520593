//go:build windows && amd64

package temz

import (
	"errors"
	"math"
	"os"
	"path/filepath"
	"strings"
	"syscall"
	"testing"
)

func version(major, minor, patch uint32) Version {
	return Version(major<<24 | minor<<12 | patch)
}

const (
	major = uint32(HeaderVersion >> 24)
	minor = uint32(HeaderVersion >> 12 & 0xFFF)
	patch = uint32(HeaderVersion & 0xFFF)
)

func TestVersionsOfHeaderAndLibraryAgree(t *testing.T) {
	h := newHost(t)
	library, err := LibraryVersion()
	h.expect(nil, err)
	equal(h, HeaderVersion, library)
	h.expect(nil, CheckVersion(HeaderVersion))
	equal(h, "3.21.4095", version(3, 21, 4095).String())
}

func TestOlderHeadersOfTheMajorVersionAreServed(t *testing.T) {
	newHost(t).expect(nil, CheckVersion(version(major, 0, 0)))
}

func TestOtherMajorAndNewerVersionsAreRefused(t *testing.T) {
	h := newHost(t)
	for _, refused := range []Version{
		version(major+1, 0, 0),
		version(major+1, minor, patch),
		version((major+0xFF)&0xFF, minor, patch),
		version(major, minor+1, 0),
		version(major, minor, patch+1),
		math.MaxUint32,
	} {
		h.expect(VersionMismatch, CheckVersion(refused))
	}
}

func TestEachStatusHasItsText(t *testing.T) {
	h := newHost(t)
	rows := findAll(t, "../../capi/temz.h.in", `STATUS\((TEMZ_\w+), (\d+), "(.*?)"\)`)
	for _, row := range rows {
		equal(h, row[3], Status(number(t, row[2])).Error())
	}
	h.check(len(rows) > 15, "%d statuses", len(rows))
}

func TestUnknownStatusHasATextToo(t *testing.T) {
	h := newHost(t)
	for _, unknown := range []Status{-1, BadValue + 1, 1000, math.MaxInt32, math.MinInt32} {
		equal(h, "Unknown status.", unknown.Error())
	}
}

func TestLibraryOfAnotherVersionIsNotUsed(t *testing.T) {
	h := newHost(t)
	h.expect(nil, openFor(HeaderVersion))
	h.expect(VersionMismatch, openFor(HeaderVersion+1))
}

// The library in the current directory must not be taken for one that the program lacks.
func TestLibraryIsTakenFromTheProgramsFolderAlone(t *testing.T) {
	const elsewhere = "TEMZ_TEST_ELSEWHERE"
	if folder := os.Getenv(elsewhere); folder != "" {
		os.Chdir(folder)
		_, err := New()
		_, schema := Schema()
		t.Fatal(err, err == schema, Busy)
	}
	h := newHost(t)
	bytes, err := os.ReadFile(program)
	h.expect(nil, err)
	alone := folder + `\alone.exe`
	h.expect(nil, os.WriteFile(alone, bytes, 0o777))
	output, _ := runAgain(t, alone, elsewhere+"="+filepath.Dir(program))
	h.check(strings.Contains(output, "Failed to load "+folder+`\TEMZC.dll`), "%s", output)
	h.check(strings.Contains(output, " true Status 14."), "%s", output)
}

func TestErrorTellsCallStatusAndReason(t *testing.T) {
	h := newHost(t)
	equal(h, "temz: run: No script is loaded.", h.run(Install).Error())
	err := h.load("<Script/>")
	equal(h, "temz: load: The script can't be loaded; the last failure may tell why. "+
		"There is no Product element.", err.Error())
	var told *Error
	h.check(errors.As(err, &told), "%T", err)
	equal(h, Error{"load", LoadFailed, "There is no Product element."}, *told)
}

func TestTextWithAZeroInsideIsRefused(t *testing.T) {
	h := newHost(t)
	const text = "a\x00b"
	h.expect(nil, h.load(oneCaution))
	_, variable := h.engine.Variable(text)
	_, directory := h.engine.Directory(text)
	_, check := Check(CheckRequest{Script: text})
	for _, err := range []error{h.engine.Load(text), variable, directory, check,
		h.plan(Install, Assumption{text, ""}), h.plan(Install, Assumption{"TEXT", text})} {
		h.check(errors.Is(err, syscall.EINVAL), "%v", err)
	}
}
