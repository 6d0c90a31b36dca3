# Sourced by the scripts in this folder: where the project is, and the few words they share.
# shellcheck shell=bash

unset CDPATH
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)
# shellcheck disable=SC2034  # for the scripts that source this file
presets=(release debug asan-ubsan tsan clang)

# Says on standard error, under the script's name, what is wrong, and ends the script.
die() {
    printf '%s: %s\n' "script/$(basename "$0")" "$*" >&2
    exit 2
}

# Ends the script unless $1 is a preset of this project.
needPreset() {
    local preset
    for preset in "${presets[@]}"; do
        [[ $1 == "$preset" ]] && return
    done
    die "there is no preset \"$1\"; there are: ${presets[*]}"
}

# configurePreset PRESET TESTS: configures unless that was done already (the build repeats it by
# itself when a CMakeLists.txt changes). TESTS is ON, or OFF to need no test libraries; a build
# that once had tests keeps them.
configurePreset() {
    local preset=$1 tests=$2 cache=$root/build/$1/CMakeCache.txt
    if [[ -f $cache && -f $root/build/$preset/build.ninja ]] &&
        { [[ $tests == OFF ]] || grep -q '^VYN_TESTS:BOOL=ON$' "$cache"; }; then
        return
    fi
    (cd "$root" && cmake --preset "$preset" "-DVYN_TESTS=$tests")
}

# buildPreset PRESET [TARGET...]: compiles; all targets when none is named.
buildPreset() {
    local preset=$1
    shift
    cmake --build "$root/build/$preset" ${1:+--target "$@"}
}

# onePerBuild PRESET: waits until no other script builds that preset, and keeps others away until
# this one ends. Ninja itself does not notice a second one in the same folder.
onePerBuild() {
    mkdir -p "$root/build/$1"
    exec {buildLock}>"$root/build/$1/.lock"
    flock "$buildLock"
}
