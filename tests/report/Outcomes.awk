# What became of each test that ctest ran: "passed NAME", "skipped NAME" or "failed NAME (WHY)".
# Read are the names of the runs that write reports (tests/main.cpp), and what ctest said. Such a run
# has as many tests as its report; what else ctest runs is a test by itself.
#
# awk -v reports=FOLDER -f Outcomes.awk RUNS LOG

FILENAME == ARGV[1] { has_report[$0] = 1; next }
/^ *[0-9]+\/[0-9]+ Test +#[0-9]+: / { sub(/^[^:]*: /, ""); ran[$1] = 1; next }
/^[ \t]+[0-9]+ - .* \(.*\)$/ {
  sub(/^[ \t]+[0-9]+ - /, ""); name = $1; sub(/^[^(]*\(/, ""); sub(/\)$/, "")
  bad[name] = $0; ran[name] = 1
}
END {
  for (name in ran) {
    if (name in has_report) continue
    if (!(name in bad)) print "passed " name
    else if (bad[name] == "Skipped" || bad[name] == "Disabled") print "skipped " name
    else print "failed " name " (" bad[name] ")"
  }
  for (run in has_report) {
    file = reports "/" run; split("", state); failed = 0; tests = 0
    while ((getline line < file) > 0) {
      event = line; sub(/ .*/, "", event); sub(/^[^ ]* /, "", line)
      state[line] = event
    }
    for (test in state) {
      ++tests
      if (state[test] == "passed") { print "passed " test; continue }
      if (state[test] == "skipped" || state[test] == "disabled") { print "skipped " test; continue }
      ++failed
      why = "in " run
      if (state[test] == "began") why = why ", which ended within it: " (run in bad ? bad[run] : "without a word")
      if (state[test] == "listed") why = why ", which ended before it"
      print "failed " test " (" why ")"
    }
    if (!tests) print "failed " run " (" (run in bad ? bad[run] : "it reported no test") ")"
    else if (run in bad && !failed) print "failed " run " (" bad[run] ", and no test of it did)"
  }
}
