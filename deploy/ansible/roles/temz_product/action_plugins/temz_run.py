"""Runs a script by temz.exe where its plan tells that anything would change.

The plan is all that is done in check mode, and what --diff shows.
"""
import json

from ansible.module_utils.parsing.convert_bool import boolean
from ansible.plugins.action import ActionBase

SUCCEEDED = (0, 3010)
RESTART_NEEDED = (3010, 3017)
PLAN_TELLS_FAILURE = 1
# What changes nothing when the content is the same.
BY_CONTENT = ("file-replaced", "file-at-restart", "value-set")
SIGNS = {"added": "+", "written": "+", "removed": "-"}


class NothingTold(Exception):
    """The program has ended without the last of its lines."""


def events_of(output):
    """The lines of --json; the last of them is the end."""
    events = [json.loads(line) for line in output["stdout"].splitlines() if line.startswith("{")]
    if not events or events[-1]["event"] != "end":
        raise NothingTold(f"temz.exe has ended with the code {output.get('rc')} before it told how. "
                          f"{output.get('stderr', '')} {output.get('msg', '')}".strip())
    return events


def changes_in(plan):
    """The steps of a plan behind which the machine isn't as before."""
    return [step for step in plan if step.get("kind") == "change"
            and not (step["change"] in BY_CONTENT and step["sameContent"])]


def line_of(change):
    """A change for the eyes, as `~ C:\\App\\a.txt  1 KB, 2026-03-01 09:30 -> 2 KB, 2026-04-01 10:00`."""
    sign = SIGNS.get(change["change"].rpartition("-")[2], "~")
    states = " -> ".join(filter(None, (change["before"], change["after"])))
    return f"{sign} {change['object']}  {states or change['change']}\n"


def words_of(failure, verb):
    """A failure in the program's own words."""
    if not failure["why"]:
        return failure["what"]
    error = f" [error {failure['systemError']}]" if failure["systemError"] else ""
    return f"{failure['what']} {verb}: {failure['why']}.{error} {failure['advice']}".rstrip()


def failures_in_plan(plan):
    return [words_of(step, "would fail") for step in plan
            if step.get("kind") == "failure" and step["fate"] != "not-vital" and not step["uncertain"]]


def failures_in_run(run):
    """Of each action that was failed or ignored in the end, the last attempt."""
    last = {event["number"]: event for event in run if event["event"] == "failure"}
    return [words_of(last[event["number"]], "failed") for event in run
            if event["event"] == "action-end" and event["fate"] in ("failed", "ignored")
            and event["number"] in last]


def result_of_plan(plan):
    """What there is to tell when nothing was done."""
    code = plan[-1]["exitCode"]
    result = {"changed": bool(changes_in(plan)), "failed": code != 0, "exit_code": code,
              "restart_needed": False}
    if result["failed"]:
        reasons = [plan[-1]["reason"]] if plan[-1]["reason"] else failures_in_plan(plan)
        result.update(changed=False, msg=" ".join(["Nothing was done.", *reasons]))
    return result


def result_of_run(run):
    end = run[-1]
    code = end["exitCode"]
    result = {"changed": end["done"] > 0, "failed": code not in SUCCEEDED, "exit_code": code,
              "restart_needed": code in RESTART_NEEDED,
              "warnings": [event["text"] for event in run if event["event"] == "warning"]}
    if result["failed"]:
        reasons = [end["reason"]] if end["reason"] else failures_in_run(run)
        done = f"Done: {end['done']} of {end['total']} actions (exit code {code})."
        result["msg"] = " ".join([*reasons, done])
    elif result["restart_needed"]:
        result["msg"] = "Files wait for a restart: " + ", ".join(end["waiting"])
    return result


class ActionModule(ActionBase):
    TRANSFERS_FILES = False

    def run(self, tmp=None, task_vars=None):
        self._supports_check_mode = True
        result = super().run(tmp, task_vars)
        # A plan is made in check mode, too, in which a command isn't run.
        check_only, self._task.check_mode = self._task.check_mode, False
        try:
            result.update(self._carry_out(check_only, task_vars))
        except NothingTold as told:
            result.update(failed=True, msg=str(told))
        finally:
            self._task.check_mode = check_only
        return result

    def _carry_out(self, check_only, task_vars):
        arguments = self._task.args
        plan = events_of(self._temz(["plan", arguments["script"], "--mode", arguments["mode"]], task_vars))
        result = result_of_plan(plan)
        if result["failed"]:
            begin = result["exit_code"] == PLAN_TELLS_FAILURE and boolean(arguments["try_anyway"])
        else:
            begin = result["changed"]
        if begin and not check_only:
            log = ["--log", arguments["log"]] if arguments["log"] else []
            command = [arguments["mode"], arguments["script"], *log, *arguments["options"]]
            result = result_of_run(events_of(self._temz(command, task_vars)))
        result["changes"] = [step["object"] for step in changes_in(plan)]
        if self._task.diff:
            result["diff"] = {"prepared": "".join(map(line_of, changes_in(plan)))}
        return result

    def _temz(self, command, task_vars):
        """Runs temz.exe in its folder. Its code is told by its last line, too."""
        folder = self._task.args["folder"]
        launcher = self._task.args["launcher"]
        program = self._connection._shell.join_path(folder, "temz.exe")
        options = {"argv": [*launcher, program, *command, "--json"], "chdir": folder}
        module = "ansible.legacy.command"
        if not launcher:
            module = "ansible.windows.win_command"
            options["output_encoding_override"] = "utf-8"
        output = self._execute_module(module_name=module, module_args=options, task_vars=task_vars)
        output.setdefault("stdout", "")
        return output
