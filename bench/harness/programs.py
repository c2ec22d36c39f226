"""What is run on each pair: a table, in the order in which one round runs it."""
import dataclasses

PYTHON = "/usr/bin/python3"  # the ones that Debian's packages are for
PERL = "/usr/bin/perl"

LIMIT_READ = "limit: read"
LIMIT_WRITE = "limit: read and write"
PLAIN_READ = "plain limit: read"
PLAIN_WRITE = "plain limit: read and write"
C_MERGE = "libldap in C: merge"
C_DIFFERENCE = "libldap in C: difference"
PYTHON_MERGE = "python3-ldap: merge"
PYTHON_DIFFERENCE = "python3-ldap: difference"
PERL_MERGE = "Net::LDAP::LDIF: merge"
PERL_DIFFERENCE = "Net::LDAP::LDIF: difference"


@dataclasses.dataclass(frozen=True)
class Step:
    name: str
    arguments: list
    is_tool: bool = False
    needs_fresh_target: bool = False
    out: tuple = ()  # files that it writes; removed before
    writes: bool = False  # and brings to the disk; what others have written is brought there first
    after: str = ""  # runs only when this step has run in the same round
    slow: bool = False  # left out for large pairs


def steps(programs, files):
    """`programs` has the paths of what is built, `files` is the Workspace of one size."""
    tool, old, new, target = programs["cfgmig"], files.old, files.new, files.target
    pair = ["--old", old, "--new", new]
    plan, merged, limit, rewritten = (files.path(name) for name in
                                      ("plan.json", "merged.conf", "limit.conf", "rewritten.conf"))
    reports = {kind: files.path("report." + kind) for kind in ("text", "ldif", "html")}

    def command(*arguments, name=None, **details):
        return Step("cfgmig " + (name or arguments[0]), [tool, *arguments], is_tool=True, **details)

    def alternatives(mode):
        out = (merged,) if mode == "merge" else ()
        arguments = [mode, old, new, *out]
        details = {"out": out, "writes": bool(out)}
        yield Step(f"libldap in C: {mode}", [programs["ldap_reader"], *arguments], **details)
        yield Step(f"python3-ldap: {mode}", [PYTHON, programs["ldif_modlist.py"], *arguments], slow=True, **details)
        yield Step(f"Net::LDAP::LDIF: {mode}", [PERL, programs["net_ldap_ldif.pl"], *arguments], slow=True, **details)

    return [
        Step(LIMIT_READ, [programs["physical_limit"], old, new]),
        command("compare", *pair),
        Step(PLAIN_READ, [programs["physical_limit"], "--plainly", old, new]),
        *alternatives("difference"),
        Step(LIMIT_WRITE, [programs["physical_limit"], old, new, limit], out=(limit,), writes=True),
        command("apply", "--old", old, "--new", target, needs_fresh_target=True, writes=True),
        Step(PLAIN_WRITE, [programs["physical_limit"], "--plainly", old, new, limit], out=(limit,), writes=True),
        command("verify", "--old", old, "--before", new, "--result", target, after="cfgmig apply"),
        command("undo", target, after="cfgmig apply", writes=True),
        *alternatives("merge"),
        Step("libldap in C: read", [programs["ldap_reader"], "read", old, new]),
        command("list", old),
        command("dump", old),
        command("dump", "--json", old, name="dump --json"),
        command("check", old),
        command("rewrite", old, rewritten, out=(rewritten,), writes=True),
        command("compare", *pair, "--json", name="compare --json"),
        command("clean", target, "--database", "--instance", "--change-log", needs_fresh_target=True, writes=True),
        command("schemas", target, "--search-dir", files.schema_source, "--target-dir", files.schema_target,
                needs_fresh_target=True, writes=True),
        command("plan", *pair),
        command("plan", "--old", old, "--new", target, "-o", plan,
                *(f"--{kind}-report={path}" for kind, path in reports.items()), name="plan with all reports",
                out=(plan, *reports.values()), needs_fresh_target=True, writes=True),
        command("why", plan, "cn=Setting 7,cn=Group 0,cn=Configuration", after="cfgmig plan with all reports"),
        command("apply", plan, name="apply PLAN", after="cfgmig plan with all reports", writes=True),
    ]
