# Front door of the build: a fresh machine needs only `make run` and `make test`.
BUILD ?= build
PREFIX ?= /usr/local
JOBS ?= $(shell nproc)

.PHONY: all setup configure build test run bench install format clean

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

run: build
	$(BUILD)/examples/tour

bench: build
	@set -e; for b in $(BUILD)/bench/bench_*; do echo "== $$b"; $$b --benchmark_min_time=0.2; done

install: build
	cmake --install $(BUILD) --prefix $(PREFIX)

format:
	find include src tests bench tools examples -name '*.h' -o -name '*.cpp' | xargs clang-format -i

clean:
	rm -rf $(BUILD)
