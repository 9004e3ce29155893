# Front door of the build: a fresh machine needs only `make run` and `make test`.
BUILD ?= build
PREFIX ?= /usr/local
JOBS ?= $(shell nproc)

.PHONY: all setup configure build test run bench install format clean test-asan test-tsan fuzz-build fuzz fuzz-smoke \
  fuzz-coverage soak

all: build

setup:
	@bash scripts/setup.sh

$(BUILD)/CMakeCache.txt:
	@bash scripts/setup.sh
	cmake -S . -B $(BUILD) -G Ninja

configure: $(BUILD)/CMakeCache.txt

build: configure
	cmake --build $(BUILD) -j $(JOBS)

test: build
	ctest --test-dir $(BUILD) --output-on-failure -j $(JOBS)

# The bundled measurement: its supply channel converted from mV to V, plotted, then shown.
VANTRA = $(BUILD)/tools/vantra/vantra
run: build
	$(VANTRA) convert examples/measurement.json --at channels/0/samples --to V >$(BUILD)/measurement-V.json
	$(VANTRA) plot $(BUILD)/measurement-V.json --at 'channels/*/samples' -o $(BUILD)/measurement.svg
	@echo "chart: $(BUILD)/measurement.svg"
	$(VANTRA) show $(BUILD)/measurement-V.json

bench: build
	@set -e; for b in $(BUILD)/bench/bench_*; do echo "== $$b"; $$b --benchmark_min_time=0.2; done

install: build
	cmake --install $(BUILD) --prefix $(PREFIX)

format:
	find include src tests bench tools examples -name '*.h' -o -name '*.cpp' | xargs clang-format -i

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(TSAN_BUILD) $(FUZZ_BUILD) $(FUZZ_COVERAGE_BUILD)

# Sanitizer builds, each in a directory of its own; benchmarks are left out of them.
ASAN_BUILD ?= build-asan
TSAN_BUILD ?= build-tsan
SANITIZE_TYPE ?= RelWithDebInfo
SANITIZE_CONFIG = -G Ninja -DCMAKE_BUILD_TYPE=$(SANITIZE_TYPE) -DVANTRACORE_BUILD_BENCH=OFF
# The multi-threaded tests: suites or names containing Thread or Concurrency.
TSAN_TESTS ?= Thread|Concurrency
export ASAN_OPTIONS ?= detect_leaks=1:detect_stack_use_after_return=1:check_initialization_order=1:strict_init_order=1
export UBSAN_OPTIONS ?= print_stacktrace=1
export TSAN_OPTIONS ?= halt_on_error=1:second_deadlock_stack=1

$(ASAN_BUILD)/CMakeCache.txt:
	@bash scripts/setup.sh
	cmake -S . -B $(ASAN_BUILD) $(SANITIZE_CONFIG) -DVANTRACORE_SANITIZE=address,undefined

$(TSAN_BUILD)/CMakeCache.txt:
	@bash scripts/setup.sh
	cmake -S . -B $(TSAN_BUILD) $(SANITIZE_CONFIG) -DVANTRACORE_SANITIZE=thread

test-asan: $(ASAN_BUILD)/CMakeCache.txt
	cmake --build $(ASAN_BUILD) -j $(JOBS)
	ctest --test-dir $(ASAN_BUILD) --output-on-failure -j $(JOBS)

test-tsan: $(TSAN_BUILD)/CMakeCache.txt
	cmake --build $(TSAN_BUILD) -j $(JOBS)
	ctest --test-dir $(TSAN_BUILD) --output-on-failure -j $(JOBS) -R '$(TSAN_TESTS)' --no-tests=error

# libFuzzer targets of fuzz/, built by clang++ against an instrumented static archive of the library.
# `make fuzz TIME=600` runs each target that many seconds; new inputs go to $(FUZZ_BUILD)/corpus,
# crashes to $(FUZZ_BUILD)/artifacts.
FUZZ_BUILD ?= build-fuzz
FUZZERS = $(sort $(basename $(notdir $(wildcard fuzz/*.cpp))))
TIME ?= 300

$(FUZZ_BUILD)/CMakeCache.txt:
	@bash scripts/setup.sh
	cmake -S . -B $(FUZZ_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
	  -DVANTRACORE_SANITIZE=address,undefined -DVANTRACORE_BUILD_FUZZ=ON \
	  -DVANTRACORE_BUILD_TESTS=OFF -DVANTRACORE_BUILD_BENCH=OFF -DVANTRACORE_BUILD_EXAMPLES=OFF \
	  -DVANTRACORE_BUILD_TOOLS=OFF

fuzz-build: $(FUZZ_BUILD)/CMakeCache.txt
	cmake --build $(FUZZ_BUILD) -j $(JOBS) --target $(addprefix fuzz_,$(FUZZERS))

fuzz: fuzz-build
	@set -e; mkdir -p $(FUZZ_BUILD)/artifacts; for f in $(FUZZERS); do \
	  echo "== fuzz_$$f for $(TIME) s"; mkdir -p $(FUZZ_BUILD)/corpus/$$f; \
	  dict=; if [ -f fuzz/$$f.dict ]; then dict=-dict=fuzz/$$f.dict; fi; \
	  if ! ASAN_OPTIONS=$(ASAN_OPTIONS):allocator_may_return_null=1 $(FUZZ_BUILD)/fuzz/fuzz_$$f $$dict \
	      -max_total_time=$(TIME) -timeout=20 -print_final_stats=1 -artifact_prefix=$(FUZZ_BUILD)/artifacts/$$f- \
	      $(FUZZ_BUILD)/corpus/$$f fuzz/corpus/$$f >$(FUZZ_BUILD)/fuzz_$$f.log 2>&1; then \
	    tail -n 80 $(FUZZ_BUILD)/fuzz_$$f.log; exit 1; \
	  fi; \
	  grep -E '^(Done|stat::number_of_executed_units|stat::new_units_added)' $(FUZZ_BUILD)/fuzz_$$f.log; \
	done

fuzz-smoke:
	@$(MAKE) --no-print-directory fuzz TIME=20

# The fuzz targets built with clang's source-based coverage, no sanitizers, each run once over its
# committed corpus; prints the line coverage of src/ and include/ per folder.
FUZZ_COVERAGE_BUILD ?= build-fuzz-coverage
COVERAGE_FLAGS = -fprofile-instr-generate -fcoverage-mapping

$(FUZZ_COVERAGE_BUILD)/CMakeCache.txt:
	@bash scripts/setup.sh
	cmake -S . -B $(FUZZ_COVERAGE_BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=clang++ \
	  -DCMAKE_CXX_FLAGS="$(COVERAGE_FLAGS)" -DCMAKE_EXE_LINKER_FLAGS="$(COVERAGE_FLAGS)" -DVANTRACORE_BUILD_FUZZ=ON \
	  -DVANTRACORE_BUILD_TESTS=OFF -DVANTRACORE_BUILD_BENCH=OFF -DVANTRACORE_BUILD_EXAMPLES=OFF \
	  -DVANTRACORE_BUILD_TOOLS=OFF

fuzz-coverage: $(FUZZ_COVERAGE_BUILD)/CMakeCache.txt
	cmake --build $(FUZZ_COVERAGE_BUILD) -j $(JOBS) --target $(addprefix fuzz_,$(FUZZERS))
	@bash scripts/fuzz-coverage.sh $(FUZZ_COVERAGE_BUILD) $(FUZZERS)

# The stress program from eight threads for TIME seconds, under ASan and then under TSan.
soak: $(ASAN_BUILD)/CMakeCache.txt $(TSAN_BUILD)/CMakeCache.txt
	cmake --build $(ASAN_BUILD) -j $(JOBS) --target vantracore_soak
	cmake --build $(TSAN_BUILD) -j $(JOBS) --target vantracore_soak
	$(ASAN_BUILD)/tests/soak/vantracore_soak $(TIME)
	$(TSAN_BUILD)/tests/soak/vantracore_soak $(TIME)
