# Shared by scripts/run and scripts/test: install what is missing, configure
# once, build. Sourced, not run.
set -euo pipefail

HALVANE_ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
HALVANE_BUILD_DIR="${HALVANE_BUILD_DIR:-$HALVANE_ROOT/build}"
HALVANE_JOBS="${HALVANE_JOBS:-$(nproc)}"
HALVANE_FUZZ_BUILD_DIR="${HALVANE_FUZZ_BUILD_DIR:-$HALVANE_ROOT/build-fuzz}"

HALVANE_PACKAGES=(
    build-essential cmake pkg-config ccache git
    juce-modules-source nlohmann-json3-dev liblz4-dev
    libgtest-dev libgmock-dev libbenchmark-dev
    libasound2-dev libfreetype-dev libfontconfig1-dev
    libx11-dev libxcomposite-dev libxcursor-dev libxext-dev libxinerama-dev
    libxrandr-dev libxrender-dev libgl1-mesa-dev libcurl4-openssl-dev
    libjack-jackd2-dev ladspa-sdk
    libflac-dev libvorbis-dev libogg-dev libpng-dev libjpeg-dev zlib1g-dev
    clang-14 libclang-rt-14-dev
    time jq
)

halvane_install_packages() {
    local missing=()
    local package
    for package in "${HALVANE_PACKAGES[@]}"; do
        if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
            missing+=("$package")
        fi
    done
    if [ "${#missing[@]}" -eq 0 ]; then
        return 0
    fi
    echo "Installing: ${missing[*]}"
    local sudo=""
    if [ "$(id -u)" -ne 0 ]; then
        sudo="sudo"
    fi
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

halvane_configure() {
    if [ ! -f "$HALVANE_BUILD_DIR/CMakeCache.txt" ]; then
        cmake -S "$HALVANE_ROOT" -B "$HALVANE_BUILD_DIR" -DCMAKE_BUILD_TYPE=Release "$@"
    fi
}

halvane_build() {
    cmake --build "$HALVANE_BUILD_DIR" --parallel "$HALVANE_JOBS" "$@"
}

# The libFuzzer targets, built by clang in a folder of their own (JUCE once
# more, the engine instrumented, nothing else), each run for a bounded time
# through ctest. Fails when a target finds a crash; the input that caused it
# is named in the output.
halvane_fuzz() {
    if [ ! -f "$HALVANE_FUZZ_BUILD_DIR/CMakeCache.txt" ]; then
        CC=clang-14 CXX=clang++-14 cmake -S "$HALVANE_ROOT" -B "$HALVANE_FUZZ_BUILD_DIR" \
            -DCMAKE_BUILD_TYPE=Release -DHALVANE_FUZZ=ON -DHALVANE_TESTS=OFF -DHALVANE_BENCH=OFF
    fi
    cmake --build "$HALVANE_FUZZ_BUILD_DIR" --target halvane_fuzzers --parallel "$HALVANE_JOBS"

    local status=0
    ctest --test-dir "$HALVANE_FUZZ_BUILD_DIR" -L fuzz --output-on-failure --parallel "$HALVANE_JOBS" || status=$?
    grep -E '^([0-9]+/[0-9]+ Testing: |Done [0-9]+ runs|stat::number_of_executed_units|stat::peak_rss_mb)' \
        "$HALVANE_FUZZ_BUILD_DIR/Testing/Temporary/LastTest.log" || true
    return "$status"
}
