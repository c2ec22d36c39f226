# Usage: fish --no-config fish.fish COMPLETION LINE...
# What fish would offer at the end of each LINE: one candidate a line, and a line "== LINE" in front.
source $argv[1]; or exit 1
for line in $argv[2..]
    echo "== $line"
    complete -C $line | string replace -r '\t.*' ''
end
exit 0
