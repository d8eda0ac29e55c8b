# The front door. On a fresh machine `make demo` and `make test` are all a newcomer needs: every
# target installs the Debian packages it depends on first.

JOBS ?= $(shell nproc)
CMAKE_GEN = -G Ninja
FUZZ_SECONDS ?= 20

.PHONY: all deps build test test-asan test-tsan fuzz demo bench format clean

all: build

deps:
	@bash scripts/install-deps.sh

build: deps
	cmake -S . -B build/release $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Release -DORVANTA_TESTS=OFF
	cmake --build build/release -j $(JOBS)

# Debug build with AddressSanitizer and UBSan, every test; the threaded tests again under
# ThreadSanitizer; then short fuzz runs.
test: deps test-asan test-tsan fuzz

test-asan:
	cmake -S . -B build/asan $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DORVANTA_SANITIZE=ON
	cmake --build build/asan -j $(JOBS)
	cd build/asan && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
	  ctest --output-on-failure -j $(JOBS)

# Only the test programs that exercise threads (the message queue, events, timers, tasks, the window
# loop woken by other threads, the clipboard's own thread, asset lists changed and walked from two
# threads, the thumbnail store's workers, a folder walk cancelled from another thread, the
# single-instance socket's thread, the print spooler's and preview's workers, the thumbnail grid
# taking up a list changed on another thread, the acquisition tasks feeding a wizard) are built under
# ThreadSanitizer, to keep the run short.
TSAN_TESTS = test_platform test_foundation test_toolkit test_assets test_desktop test_printing test_views test_acquire
test-tsan:
	cmake -S . -B build/tsan $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DORVANTA_TSAN=ON
	cmake --build build/tsan -j $(JOBS) --target $(TSAN_TESTS)
	for t in $(TSAN_TESTS); do \
	  TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1" build/tsan/bin/$$t --gtest_brief=1 || exit 1; \
	done

fuzz: deps
	CC=clang CXX=clang++ cmake -S . -B build/fuzz $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DORVANTA_FUZZ=ON -DORVANTA_TESTS=OFF -DORVANTA_TOOLS=OFF
	cmake --build build/fuzz -j $(JOBS)
	FUZZ_SECONDS=$(FUZZ_SECONDS) bash fuzz/run-all.sh build/fuzz

demo: build
	bash scripts/demo.sh build/release/bin/orvanta

# The benchmark programs and the comparisons with the reference tools, ending with the speed table.
# BENCH_BASELINE=<folder> adds the figures of an earlier version built there the same way (its
# release build with -DORVANTA_BENCH=ON), each beside the figure of this one.
bench:
	@bash scripts/install-deps.sh --bench
	cmake -S . -B build/bench $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Release -DORVANTA_TESTS=OFF -DORVANTA_BENCH=ON
	cmake --build build/bench -j $(JOBS)
	bash bench/run-all.sh build/bench

format:
	find orvanta tests tools bench fuzz -name '*.h' -o -name '*.cpp' | xargs clang-format -i

clean:
	rm -rf build
