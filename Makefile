# The two commands of the project: `make test` and `make demo`.
# Each one installs what it needs on a fresh Debian 12 machine first.

JOBS    ?= $(shell nproc)
PRESET  ?= dev
BUILD   := build/$(PRESET)
PREFIX  ?= $(CURDIR)/build/install

export QT_QPA_PLATFORM ?= offscreen
export XDG_RUNTIME_DIR ?= $(CURDIR)/build/xdg-runtime

.PHONY: test demo deps configure build test-asan bench fuzz clean

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

bench:
	$(MAKE) build PRESET=release
	@for b in build/release/bench/bench_*; do [ -x "$$b" ] && "$$b"; done

# The fuzz targets and the monkey test, built with clang under the sanitizers
# and run for a bounded time each (FUZZ_SECONDS, default 300); see
# scripts/fuzz.sh for the other knobs. A crash fails the run and leaves its
# reproducer in build/fuzz-artifacts.
FUZZ_SECONDS ?= 300
export FUZZ_SECONDS

fuzz: deps | $(XDG_RUNTIME_DIR)
	@chmod 0700 $(XDG_RUNTIME_DIR)
	cmake --preset fuzz
	cmake --build --preset fuzz -j $(JOBS)
	@bash scripts/fuzz.sh build/fuzz

demo: build | $(XDG_RUNTIME_DIR)
	@bash scripts/demo.sh "$(BUILD)" "$(PREFIX)"

clean:
	rm -rf build
