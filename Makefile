# The two commands of the project: `make test` and `make demo`.
# Each one installs what it needs on a fresh Debian 12 machine first.

JOBS    ?= $(shell nproc)
PRESET  ?= dev
BUILD   := build/$(PRESET)
PREFIX  ?= $(CURDIR)/build/install

export QT_QPA_PLATFORM ?= offscreen
export XDG_RUNTIME_DIR ?= $(CURDIR)/build/xdg-runtime

.PHONY: test demo deps configure build test-asan bench fuzz format-check clean

deps:
	@bash scripts/install-deps.sh

$(XDG_RUNTIME_DIR):
	@mkdir -p -m 0700 $(XDG_RUNTIME_DIR)

configure: deps
	cmake --preset $(PRESET)

build: configure
	cmake --build --preset $(PRESET) -j $(JOBS)

test: build | $(XDG_RUNTIME_DIR)
	@chmod 0700 $(XDG_RUNTIME_DIR)
	ctest --preset $(PRESET) -j $(JOBS)

# The same tests under AddressSanitizer and UndefinedBehaviorSanitizer.
test-asan:
	$(MAKE) test PRESET=asan

# The benchmarks in a release build of only their own targets: bench_core
# (Google Benchmark, the pure core) and bench_control (what a user of the
# control waits for), printed as one table and written to
# build/release/bench-results.json. BENCH_ARGS go to bench_control, e.g.
# BENCH_ARGS="--sizes large --runs 3". Then the field suggestions: their
# speed (bench_suggest) and their quality on every pair of MATCHDATA
# (bench/suggest-quality.py through fieldbridge suggest), beside their goals
# and added to the same JSON.
BENCH_ARGS ?=
MATCHDATA ?= $(CURDIR)/../shared/matchdata
bench: deps | $(XDG_RUNTIME_DIR)
	@chmod 0700 $(XDG_RUNTIME_DIR)
	cmake --preset release
	cmake --build --preset release -j $(JOBS) --target bench_core bench_control bench_suggest fieldbridge
	@build/release/bench/bench_core --benchmark_out=build/release/bench-core.json \
		--benchmark_out_format=json > build/release/bench-core.log 2>&1 \
		|| { cat build/release/bench-core.log; exit 1; }
	@build/release/bench/bench_suggest --benchmark_out=build/release/bench-suggest.json \
		--benchmark_out_format=json > build/release/bench-suggest.log 2>&1 \
		|| { cat build/release/bench-suggest.log; exit 1; }
	@build/release/bench/bench_control --core build/release/bench-core.json \
		--json build/release/bench-results.json \
		--commit "$$(git rev-parse --short HEAD 2>/dev/null)" $(BENCH_ARGS)
	@python3 bench/suggest-quality.py --tool build/release/tools/fieldbridge/fieldbridge \
		--data "$(MATCHDATA)" --out build/release/suggest-quality \
		--speed build/release/bench-suggest.json --merge build/release/bench-results.json

# The fuzz targets and the monkey test, built with clang under the sanitizers
# and run for a bounded time each (FUZZ_SECONDS, default 300); see
# scripts/fuzz.sh for the other knobs. A crash fails the run and leaves its
# reproducer in build/fuzz-artifacts.
FUZZ_SECONDS ?= 300
export FUZZ_SECONDS

# Every source file in the project's one format (.clang-format).
format-check: deps
	git ls-files '*.cpp' '*.h' | xargs clang-format-14 --dry-run --Werror

fuzz: deps | $(XDG_RUNTIME_DIR)
	@chmod 0700 $(XDG_RUNTIME_DIR)
	cmake --preset fuzz
	cmake --build --preset fuzz -j $(JOBS)
	@bash scripts/fuzz.sh build/fuzz

demo: build | $(XDG_RUNTIME_DIR)
	@bash scripts/demo.sh "$(BUILD)" "$(PREFIX)"

clean:
	rm -rf build
