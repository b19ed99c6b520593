//go:build windows && amd64

package temz

import (
	"strings"
	"testing"
)

// expectFailure expects a load to fail with a text of the last failure.
func (h *host) expectFailure(text, script string) {
	h.Helper()
	h.expect(LoadFailed, h.load(script))
	h.expectLastFailure(text)
	h.expect(NotLoaded, h.run(Install))
}

func TestMissingFileFailsWithoutAWord(t *testing.T) {
	h := newHost(t)
	h.expect(LoadFailed, h.load("<Script/>"))
	h.expect(LoadFailed, h.engine.Load(folder+`\missing.xml`))
	h.expect(LoadFailed, h.engine.Load(""))
	h.expectLastFailure("")
}

func TestFileThatIsNoXmlFailsWithoutAWord(t *testing.T) {
	h := newHost(t)
	h.expectFailure("", "<Script><Product>")
	h.expectFailure("", "MZ")
}

func TestScriptNestedTooDeepFailsWithoutAWord(t *testing.T) {
	const depth = 257
	newHost(t).expectFailure("", strings.Repeat("<a>", depth)+strings.Repeat("</a>", depth))
}

func TestScriptWithoutProductTellsSo(t *testing.T) {
	newHost(t).expectFailure("There is no Product element.", "<Script/>")
}

func TestFailedLoadLeavesNothingBehind(t *testing.T) {
	h := newHost(t)
	h.expectFailure("There is no Product element.",
		"<Script><Variable Id='GONE' Type='string' Value='x'/></Script>")
	h.expect(nil, h.load(oneCaution))
	_, err := h.engine.Variable("GONE")
	h.expect(NotFound, err)
	h.expect(nil, h.run(Install))
}

func TestRelativePathCountsFromCurrentDirectory(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.engine.Load("install.xml"))
	h.expect(nil, h.engine.Unload())
	h.expect(nil, h.engine.Load(`.\install.xml`))
}

func TestUnloadForgetsScriptAndOutcome(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(oneAction))
	h.action.result = 5
	h.expect(RunFailed, h.run(Install))
	h.expect(nil, h.engine.Unload())
	h.expect(nil, h.engine.Unload())
	_, err := h.engine.Outcome()
	h.expect(NotLoaded, err)

	h.expect(nil, h.load(oneCaution))
	outcome, err := h.engine.Outcome()
	h.expect(nil, err)
	equal(h, Outcome{}, outcome)
}

func TestUnloadKeepsObserverTracerAndActionValue(t *testing.T) {
	h := newHost(t)
	h.trace()
	h.expect(nil, h.load(oneCaution))
	h.expect(nil, h.engine.Unload())
	h.expect(nil, h.load(oneAction))
	h.expect(nil, h.run(Install))
	equal(h, 1, h.updates)
	h.check(len(h.calls) > 0, "nothing is traced")
	equal(h, 1, h.action.calls)
}
