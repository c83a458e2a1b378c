# What the scripts share; they read this file with `.`.

# What a program needs that uses the library.
LUM_LIBRARY_PACKAGES="g++ cmake ninja-build pkg-config libicu-dev zlib1g-dev uuid-dev"

# What the preset release needs besides: the tests and the benchmarks.
LUM_RELEASE_PACKAGES="$LUM_LIBRARY_PACKAGES ccache python3 libgtest-dev libbenchmark-dev nlohmann-json3-dev libcli11-dev
libexpat1-dev libpugixml-dev libxml2-dev"

# What all tests and checks need.
LUM_PACKAGES="$LUM_RELEASE_PACKAGES g++-multilib clang libclang-rt-14-dev libc++-dev libc++abi-dev clang-format clang-tidy
binutils libxml2-utils xsltproc xz-utils docbook-xml w3c-sgml-lib zip unzip doxygen doxygen-awesome-css
locales dpkg-dev file lintian gdb"

# Further libraries that scripts/bench measures beside ours; what is missing of them is not measured.
LUM_BENCH_PACKAGES="libxerces-c-dev qtbase5-dev"

# Installs the packages named that are missing. Without root it names the command that does so, and stops.
install_missing() {
    missing=""
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    if [ "$(id -u)" != 0 ]; then
        sudo=""
        if command -v sudo >/dev/null; then sudo="sudo "; fi
        {
            echo "Packages are missing. As root, run:"
            echo "${sudo}apt-get install --no-install-recommends$missing"
            [ -n "$(find /var/lib/apt/lists -name '*_Packages*' 2>/dev/null)" ] ||
                echo "(and before it ${sudo}apt-get update: this machine has no lists of packages yet)"
        } >&2
        exit 2
    fi
    watched "Installing:$missing" \
        sh -c "apt-get -q update && DEBIAN_FRONTEND=noninteractive apt-get -q install -y --no-install-recommends $missing"
}

# quietly COMMAND...: its output is shown only when it fails; its exit code is passed on.
quietly() {
    quiet_log=$(mktemp)
    if "$@" >"$quiet_log" 2>&1; then
        rm -f "$quiet_log"
    else
        quiet_code=$?
        tail -n 400 "$quiet_log" >&2
        rm -f "$quiet_log"
        return "$quiet_code"
    fi
}

# watched WHAT COMMAND...: says what is being done and, every 15 seconds, how far it has come; otherwise like quietly.
# With keep_log=FILE the output stays in that file, and showing it when the command fails is left to the caller.
watched() {
    watch_what=$1
    shift
    echo "$watch_what"
    watch_log=${keep_log:-$(mktemp)}
    (
        seconds=0
        while sleep 1 >/dev/null 2>&1 && kill -0 $$ 2>/dev/null; do
            seconds=$((seconds + 1))
            [ $((seconds % 15)) != 0 ] || printf '    %3d s: %.90s\n' "$seconds" "$(tail -n 1 "$watch_log")"
        done
    ) &
    ticker=$!
    watch_code=0
    "$@" >"$watch_log" 2>&1 || watch_code=$?
    kill "$ticker" 2>/dev/null
    wait "$ticker" 2>/dev/null || true
    if [ -z "${keep_log:-}" ]; then
        [ "$watch_code" = 0 ] || tail -n 400 "$watch_log" >&2
        rm -f "$watch_log"
    fi
    return "$watch_code"
}

# print_head SCRIPT: its leading comment, which is its help.
print_head() {
    sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$1"
}
