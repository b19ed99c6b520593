//go:build windows && amd64

package temz

import (
	"context"
	"testing"
)

// A failure of a vital action, or of one that isn't.
func noService(attributes string) string {
	return `<Fragment><ServiceControl Name='temz-go-none' Action='start' Wait='no' ` + attributes +
		`/></Fragment>`
}

func searchFor(name string) string {
	return `<Fragment><FileSearch Name='` + name + `' Path='` + folder +
		`' Expression='NUMBER = 8'/></Fragment>`
}

// expectStep expects a step, and gives it.
func (h *host) expectStep(index int, kind StepKind, depth int, element, object string) Step {
	h.Helper()
	if index < 0 || index >= len(h.steps) {
		h.Errorf("There is no step %d of %d.", index, len(h.steps))
		return Step{}
	}
	step := h.steps[index]
	equal(h, kind, step.Kind)
	equal(h, depth, step.Depth)
	equal(h, element, step.Element)
	equal(h, object, step.Object)
	return step
}

func TestPlanChangesNothing(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(threeFiles))

	h.expect(nil, h.plan(Install))

	h.check(!isThere(app), "something was done")
	equal(h, 3, h.updates)
	equal(h, 0, h.outcome.Result)
	equal(h, "3.txt", h.outcome.Action.Text1)
	later, err := h.engine.Outcome()
	h.expect(nil, err)
	equal(h, h.outcome, later)
	h.expect(nil, h.run(Install))
	h.expectFiles(true, true, true)
	h.expect(nil, h.plan(Uninstall))
	h.expectFiles(true, true, true)
}

func TestPlanTellsItsStepsInOrder(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(script(`<Condition Expression='OS_BIT E 64'>`+
		`<Feature Id='Main'><ComponentRef Id='Missing'/></Feature></Condition>`+aCaution)))

	h.expect(nil, h.plan(Install))

	h.expectStep(0, StepAction, 0, "Condition", "OS_BIT E 64")
	condition := h.expectStep(1, StepCondition, 0, "Condition", "OS_BIT E 64")
	equal(h, "OS_BIT = 64", condition.Detail)
	equal(h, true, condition.Holds)
	equal(h, 10, condition.Line)
	equal(h, "Main", h.expectStep(2, StepGroup, 1, "Feature", "").ID)
	h.expectStep(3, StepGroup, 2, "Component", "")
	h.expectStep(4, StepElement, 3, "File", "")
	equal(h, ChangeDirectoryAdded, h.expectStep(5, StepChange, 3, "File", `C:\temz-go\app`).Code)
	equal(h, ActionCopyFile, h.expectStep(6, StepAction, 3, "File", "4.txt").Code)
	last := len(h.steps) - 1
	h.expectStep(last-2, StepGroup, 0, "Fragment", "")
	h.expectStep(last-1, StepElement, 1, "Caution", "")
	equal(h, "Mind the gap", h.expectStep(last, StepAction, 1, "Caution", "").Detail)
}

func TestPlanTellsWhatIsLeftOut(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(script(`<Condition Expression='NUMBER E 8'>
		<Feature><ComponentRef Id='Files'/></Feature></Condition>
		<Fragment On='uninstall'><Caution Title='a'/></Fragment>`)))

	h.expect(nil, h.plan(Install))

	equal(h, 3, len(h.steps))
	condition := h.expectStep(1, StepCondition, 0, "Condition", "NUMBER E 8")
	equal(h, false, condition.Holds)
	equal(h, 5, condition.Elements)
	equal(h, 3, condition.Files)
	fragment := h.expectStep(2, StepLeftOut, 0, "Fragment", "uninstall")
	equal(h, 2, fragment.Elements)
	equal(h, 0, fragment.Files)
}

func TestPlanTellsSearches(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(script(searchFor("none.txt")+searchFor("script.xml"))))

	h.expect(nil, h.plan(Install))

	equal(h, 4, len(h.steps))
	none := h.expectStep(1, StepSearch, 1, "FileSearch", folder+`\none.txt`)
	equal(h, false, none.Holds)
	equal(h, "", none.Detail)
	found := h.expectStep(3, StepSearch, 1, "FileSearch", folder+`\script.xml`)
	equal(h, true, found.Holds)
	equal(h, "NUMBER = 8", found.Detail)
}

func TestPlanTellsWhatChanges(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(threeFiles))
	h.expect(nil, h.plan(Install))
	added := h.heardStep(StepChange, 1)
	equal(h, ChangeFileAdded, added.Code)
	endsIn(h, added.Detail, `payload\greeter.txt`)
	equal(h, "", added.Before)
	h.check(added.After != "", "nothing is there then")
	h.check(added.Bytes > 0, "a file without a size")

	h.expect(nil, h.run(Install))
	h.steps = nil
	h.expect(nil, h.plan(Upgrade))
	replaced := h.heardStep(StepChange, 0)
	equal(h, ChangeFileReplaced, replaced.Code)
	equal(h, true, replaced.SameContent)
	equal(h, replaced.Bytes, replaced.BytesBefore)
}

func TestPlanIsTracedAndPermittedLikeARun(t *testing.T) {
	h := newHost(t)
	h.trace()
	h.expect(nil, h.load(threeFiles))
	h.expect(nil, h.plan(Install))
	copied := h.heard("CopyFileW", 2)
	equal(h, true, copied.Changes)
	equal(h, false, copied.Failed)
	equal(h, app+`\3.txt`, copied.Arguments[1])
	equal(h, "1", copied.Result)

	h.guard()
	h.expect(nil, h.plan(Install))
	equal(h, 6, len(h.permissions))
	h.expect(nil, h.run(Install))
	equal(h, 12, len(h.permissions))
	h.refuseAt = 14
	h.expect(Stopped, h.plan(Upgrade))
	equal(h, "1.txt", h.outcome.Action.Text1)
}

func TestPlanGoesOnPastAFailure(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(script(noService("")+noService("Vital='no'")+aCaution)))

	h.expect(nil, h.plan(Install))

	equal(h, 0, h.asks)
	equal(h, 0, h.outcome.Result)
	for i, fate := range []Fate{FailureVital, FailureNotVital} {
		failure := h.heardStep(StepFailure, i)
		equal(h, "ServiceControl", failure.Element)
		equal(h, ActionStartService, failure.Code)
		equal(h, "temz-go-none", failure.Object)
		equal(h, fate, failure.Fate)
	}
	equal(h, Step{}, h.heardStep(StepFailure, 2))
	h.expectStep(len(h.steps)-1, StepAction, 1, "Caution", "")
}

func TestPlanEndsWhereARunEndsUnasked(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(script(`<Fragment><Condition Expression='NONE E 1'/></Fragment>`+aCaution)))

	h.expect(RunFailed, h.plan(Install))

	equal(h, -1, h.outcome.Result)
	equal(h, 3, len(h.steps))
	failure := h.expectStep(2, StepFailure, 1, "Condition", "")
	equal(h, ErrorMessage, failure.Code)
	equal(h, FailureEndsRun, failure.Fate)
	equal(h, h.outcome.Failure.Message, failure.Message)
}

func TestPlanCanBeStopped(t *testing.T) {
	h := newHost(t)
	h.stopAt = 2
	h.expect(nil, h.load(threeFiles))
	h.expect(Stopped, h.plan(Install))
	equal(h, "2.txt", h.outcome.Action.Text1)
	equal(h, StepAction, h.heardStep(StepAction, 0).Kind)
	equal(h, Step{}, h.heardStep(StepAction, 1))
}

func TestPlanNeedsNeitherPlannerNorOutcome(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(threeFiles))
	_, err := h.engine.Plan(context.Background(), Install, nil)
	h.expect(nil, err)
	equal(h, 3, h.updates)
	equal(h, 0, len(h.steps))
	h.expect(BadMode, h.plan(3))
}

func TestPlanLeavesVariablesAsTheyWere(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(script(`<Condition Expression='TEXT = EMPTY'/>
		<Condition Expression='NUMBER = 9'/><Condition Expression='NUMBER E 9'/>`)))
	for i := 0; i < 2; i++ {
		h.steps = nil
		h.expect(nil, h.plan(Install))
		equal(h, `TEXT = "a text", EMPTY = ""`, h.heardStep(StepCondition, 0).Detail)
		equal(h, "NUMBER = 7", h.heardStep(StepCondition, 1).Detail)
		equal(h, "NUMBER = 9", h.heardStep(StepCondition, 2).Detail)
		h.expectVariable("TEXT", "a text")
	}
	h.expect(nil, h.run(Install))
	h.expectVariable("TEXT", "")
}

func TestPlanAssumesOtherValues(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(script(`<Condition Expression='OS_BIT E 32 AND ( TEXT E EMPTY )'/>`)))

	h.expect(nil, h.plan(Install, Assumption{"OS_BIT", "32"}, Assumption{"TEXT", "b"},
		Assumption{"TEXT", "c"}))
	equal(h, `OS_BIT = 32, TEXT = "c", EMPTY = ""`, h.heardStep(StepCondition, 0).Detail)

	h.steps = nil
	h.expect(nil, h.plan(Install))
	equal(h, `OS_BIT = 64, TEXT = "a text", EMPTY = ""`, h.heardStep(StepCondition, 0).Detail)
}

func TestAssumptionsMustBePossible(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(oneCaution))
	for _, row := range []struct {
		status Status
		Assumption
	}{
		{NotFound, Assumption{"NONE", "1"}},
		{BadValue, Assumption{"NUMBER", "x"}},
		{BadValue, Assumption{"OS_BIT", ""}},
	} {
		err := h.plan(Install, Assumption{"NUMBER", "-5"}, row.Assumption)
		h.expect(row.status, err)
		equal(h, row.Name, err.(*Error).Reason)
		equal(h, Outcome{}, h.outcome)
		h.expectLastFailure(row.Name)
	}
	equal(h, 0, h.updates)
}

func TestStepsMayAskAndSetButNotChange(t *testing.T) {
	h := newHost(t)
	h.inStep = func(*Step) { h.callEverything() }
	h.expect(nil, h.load(threeFiles))
	h.expect(nil, h.plan(Install))
	h.check(len(h.steps) > 3, "%d steps", len(h.steps))
}

func TestPlannerIsGoodForItsPlanOnly(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(oneCaution))
	h.expect(nil, h.plan(Install))
	steps := len(h.steps)
	h.expect(nil, h.run(Install))
	_, err := h.engine.Plan(context.Background(), Install, nil)
	h.expect(nil, err)
	equal(h, steps, len(h.steps))
}
