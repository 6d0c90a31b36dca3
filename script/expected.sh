# Sourced by the scripts that hold the command's output against what is expected of it, after
# common.sh. The script sets
#
#   folder   where its cases lie; --dir names another
#   ending   of a case's own file: NAME.ending
#   kind     what it calls a case
#
# and defines runOne NAME: it runs the command on one case, its output to $scratch/out, its errors to
# $scratch/err, its exit status to $status. Then it calls `expectedMain "$@"`.
# shellcheck shell=bash disable=SC2154

accept=
vynpt=
names=()
status=0

parseArguments() {
    while (($#)); do
        case $1 in
        --accept) accept=yes ;;
        --vynpt | --dir)
            (($# > 1)) || die "$1 needs a value"
            [[ $1 == --vynpt ]] && vynpt=$2 || folder=$2
            shift
            ;;
        -h | --help) sed -n '2,/^set/{/^#/s/^# \{0,1\}//p}' "$0" && exit ;;
        -*) die "unknown option $1" ;;
        *) names+=("$(basename "$1" ".$ending")") ;;
        esac
        shift
    done
}

buildVynpt() {
    "$root/script/setup" build
    onePerBuild release
    configurePreset release OFF >&2
    buildPreset release vynpt >&2
    vynpt=$root/build/release/cli/vynpt
}

# All cases of the folder when none is named.
findCases() {
    local file name
    if ((!${#names[@]})); then
        for file in "$folder"/*."$ending"; do
            [[ -e $file ]] || die "there is no $kind in $folder"
            names+=("$(basename "$file" ".$ending")")
        done
    fi
    for name in "${names[@]}"; do
        [[ -f $folder/$name.$ending ]] || die "there is no $kind $folder/$name.$ending"
    done
}

acceptOne() {
    cp "$scratch/out" "$folder/$1.out"
    rm -f "$folder/$1.status"
    ((status == 0)) || echo "$status" >"$folder/$1.status"
}

# Prints how the last run differs from what is expected of case $1; succeeds when it does not.
compare() {
    local expected=0 same=0 out=$folder/$1.out
    [[ ! -f $folder/$1.status ]] || read -r expected <"$folder/$1.status"
    [[ -f $out ]] || out=/dev/null
    diff --unified=4 --color="$colour" --label "$1.out (expected)" --label "$1 (now)" \
        "$out" "$scratch/out" || same=1
    if ((status != expected)); then
        echo "$1: expected exit status $expected, now $status"
        same=1
    fi
    ((same == 0)) || sed 's/^/standard error: /' "$scratch/err"
    return "$same"
}

compareAll() {
    local name passed=0 failed=()
    for name in "${names[@]}"; do
        runOne "$name"
        if compare "$name" >"$scratch/difference"; then
            passed=$((passed + 1))
            continue
        fi
        cat "$scratch/difference"
        if [[ $accept ]]; then
            acceptOne "$name"
            echo "$name: accepted"
            passed=$((passed + 1))
        else
            failed+=("$name")
        fi
    done
    if ((${#failed[@]})); then
        echo "not as expected: ${failed[*]}"
        echo "(script/$(basename "$0") --accept ${failed[*]} makes it the expected output)"
    fi
    echo "$passed passed, ${#failed[@]} failed"
    ((${#failed[@]} == 0))
}

expectedMain() {
    parseArguments "$@"
    if [[ $vynpt ]]; then
        vynpt=$(realpath "$vynpt")
    else
        buildVynpt
    fi
    findCases
    scratch=$(mktemp -d)
    trap 'rm -rf "$scratch"' EXIT
    colour=never
    [[ -t 1 && -z ${NO_COLOR-} ]] && colour=always
    compareAll
}
