//go:build windows && amd64

package temz

import (
	"strings"
	"testing"
)

func (h *host) expectLastFailure(text string) {
	h.Helper()
	actual, err := h.engine.LastFailure()
	h.expect(nil, err)
	equal(h, text, actual)
}

func (h *host) expectVariable(name, value string) {
	h.Helper()
	actual, err := h.engine.Variable(name)
	h.expect(nil, err)
	equal(h, value, actual)
}

func TestAbsentNamesAreNotFound(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(oneCaution))
	for _, row := range []struct {
		ask          func(string) (string, error)
		name, reason string
	}{
		{h.engine.Variable, "absent", "absent variable is no exist."},
		{h.engine.Variable, "text", "text variable is no exist."},
		{h.engine.Variable, "", " variable is no exist."},
		{h.engine.Variable, "NUMBER", "It doesn't support getString method."},
		{h.engine.Directory, "absent", "Get directory error:can't get the absent directory"},
	} {
		text, err := row.ask(row.name)
		h.expect(NotFound, err)
		equal(h, row.reason, err.(*Error).Reason)
		h.expectLastFailure(row.reason)
		equal(h, "", text)
	}
}

func TestFailureTextLastsUntilTheNextCall(t *testing.T) {
	h := newHost(t)
	expectAbsent := func(ask func(string) (string, error)) {
		_, err := ask("absent")
		h.expect(NotFound, err)
	}
	h.expect(nil, h.load(oneCaution))
	h.expectLastFailure("")
	expectAbsent(h.engine.Variable)
	h.expect(nil, h.run(Install))
	h.expectLastFailure("absent variable is no exist.")
	h.expectLastFailure("absent variable is no exist.")
	_, err := h.engine.Directory("System32Folder")
	h.expect(nil, err)
	h.expectLastFailure("")
	expectAbsent(h.engine.Directory)
	h.expectVariable("TEXT", "a text")
	h.expectLastFailure("")
	expectAbsent(h.engine.Directory)
	h.expect(nil, h.engine.Unload())
	h.expect(nil, h.load(oneCaution))
	h.expectLastFailure("")
}

func TestTextsOfAnyLengthComeWhole(t *testing.T) {
	h := newHost(t)
	for _, length := range []int{0, 1, textLength - 1, textLength, 100 * textLength} {
		text := strings.Repeat("x", length)
		h.expect(nil, h.load("<Script><Variable Id='V' Type='string' Value='"+text+
			"'/><Product><InstallExecuteSequence/></Product></Script>"))
		h.expectVariable("V", text)
		h.expect(nil, h.engine.Unload())
	}
}

func TestSchemaNeedsNoContext(t *testing.T) {
	h := newHost(t)
	schema, err := Schema()
	h.expect(nil, err)
	h.check(strings.HasPrefix(schema, "<?xml"), "%.20q", schema)
	endsIn(h, schema, "</xs:schema>\n")
}
