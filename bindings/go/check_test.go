//go:build windows && amd64

package temz

import (
	"os"
	"strings"
	"testing"
)

const checkedFile = folder + `\checked.xml`

// An element that the engine doesn't know, on the second line.
const withAFault = "<Script><Product><InstallExecuteSequence><Fragment>\n" +
	"<Cautoin Title='Mind the gap'/></Fragment></InstallExecuteSequence></Product></Script>"

// checkFor checks a script, and gives the findings of one code.
func (h *host) checkFor(code, script string) (found []Finding) {
	h.Helper()
	h.expect(nil, os.WriteFile(checkedFile, []byte(script), 0o666))
	findings, err := Check(CheckRequest{Script: checkedFile})
	h.expect(nil, err)
	for _, finding := range findings {
		if finding.Code == code {
			found = append(found, finding)
		}
	}
	return found
}

func TestCheckTellsWhatIsWrongAndWhere(t *testing.T) {
	h := newHost(t)
	found := h.checkFor("TZ203", withAFault)
	equal(h, 1, len(found))
	if len(found) != 1 {
		return
	}
	finding := found[0]
	endsIn(h, finding.Text, "`Fragment`.")
	endsIn(h, finding.Help, "`Caution`?")
	endsIn(h, finding.SourceLine, "</Script>")
	finding.Text, finding.Help, finding.SourceLine = "", "", ""
	equal(h, Finding{
		Severity: SeverityError, EndsRun: true, Line: 2, Column: 1, Length: 8,
		Code: "TZ203", File: checkedFile,
	}, finding)
}

func TestCheckOfAScriptWithoutFaultsTellsNone(t *testing.T) {
	h := newHost(t)
	equal(h, 0, len(h.checkFor("TZ203", oneCaution)))
}

func TestCheckRunsNothing(t *testing.T) {
	h := newHost(t)
	h.checkFor("TZ203", threeFiles)
	h.check(!isThere(app), "something was done")
	h.expect(nil, h.load(threeFiles))
	h.checkFor("TZ203", threeFiles)
	h.expect(nil, h.run(Install))
}

func TestCheckNeedsAFileThatCanBeRead(t *testing.T) {
	h := newHost(t)
	missing := folder + `\missing.xml`
	_, err := Check(CheckRequest{Script: missing})
	h.expect(NotReadable, err)
	h.checkFor("TZ203", oneCaution)
	findings, err := Check(CheckRequest{Script: checkedFile, Previous: missing})
	h.expect(NotReadable, err)
	equal(h, 0, len(findings))
}

func TestCheckLooksAtThePayload(t *testing.T) {
	h := newHost(t)
	h.expect(nil, os.WriteFile(checkedFile, []byte(threeFiles), 0o666))
	without, err := Check(CheckRequest{Script: checkedFile})
	h.expect(nil, err)
	with, err := Check(CheckRequest{Script: checkedFile, Payload: folder})
	h.expect(nil, err)
	h.check(len(with) > len(without), "%d findings, %d with a payload", len(without), len(with))
}

func TestMisusedChecksAreTold(t *testing.T) {
	h := newHost(t)
	findings, err := Check(CheckRequest{})
	h.expect(NullArgument, err)
	equal(h, 0, len(findings))
}

func TestCheckInsideARunIsRefused(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(oneCaution))
	h.inUpdate = func(*Outcome) {
		_, err := Check(CheckRequest{Script: checkedFile})
		h.expect(InCallback, err)
	}
	h.expect(nil, h.run(Install))
	equal(h, 1, h.updates)
}

func TestEachKindOfFindingCanBeAsked(t *testing.T) {
	h := newHost(t)
	kinds, err := FindingKinds()
	h.expect(nil, err)
	before := ""
	for _, kind := range kinds {
		h.check(kind.Severity >= SeverityError && kind.Severity <= SeverityNote, "%v", kind)
		h.check(strings.HasPrefix(kind.Code, "TZ") && len(kind.Code) == 5, "%v", kind)
		h.check(kind.Code > before, "%s behind %s", kind.Code, before)
		endsIn(h, kind.Meaning, ".")
		endsIn(h, kind.Remedy, ".")
		before = kind.Code
	}
	h.check(len(kinds) > 20, "%d kinds", len(kinds))
}
