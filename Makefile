# Front door: `make` builds everything, `make test` builds and runs every test.
BUILD ?= build
JOBS ?= $(shell nproc)
CMAKE_FLAGS ?=

.PHONY: all build configure test test-asan bootstrap clean format

all: build

bootstrap:
	@scripts/bootstrap

configure: bootstrap
	@cmake -S . -B $(BUILD) $(CMAKE_FLAGS) >/dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

# Renders the bundled example sprite into out/: one PNG per symbol with index.json (its error
# texts), the contact sheet out/sheet.png and the HTML report out/report/index.html.
DEMO_SPRITE ?= examples/sprite.svg
.PHONY: demo
demo: configure
	@cmake --build $(BUILD) --target tessaline_cli -j $(JOBS)
	@rm -rf out
	@$(BUILD)/tessaline render-all $(DEMO_SPRITE) -o out
	@$(BUILD)/tessaline sheet $(DEMO_SPRITE) -o out/sheet.png
	@$(BUILD)/tessaline report $(DEMO_SPRITE) -o out/report
	@echo "demo: $$(ls out/*.png | grep -vc '^out/sheet.png$$') symbol images and out/index.json in out/"
	@echo "demo: contact sheet out/sheet.png; report out/report/index.html (open it in a browser)"

test: build
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

# The same suite with AddressSanitizer and UndefinedBehaviorSanitizer.
test-asan:
	@$(MAKE) --no-print-directory test BUILD=build-asan CMAKE_FLAGS="-DTESSALINE_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug $(CMAKE_FLAGS)"

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	@rm -rf $(BUILD) build-asan

# Fuzzing (clang + libFuzzer): `make fuzz FUZZ_SECONDS=600`. New inputs accumulate in fuzz-corpus/
# (ignored by git); crashes are written to build-fuzz/crashes/.
FUZZ_SECONDS ?= 300
# Extra libFuzzer flags, e.g. FUZZ_FLAGS="-fork=1 -ignore_timeouts=1" to keep going past slow inputs.
FUZZ_FLAGS ?=
.PHONY: fuzz
fuzz: bootstrap
	@CC=clang CXX=clang++ cmake -S . -B build-fuzz -DTESSALINE_FUZZ=ON -DTESSALINE_BUILD_TESTS=OFF \
	  -DTESSALINE_BUILD_TOOLS=OFF -DTESSALINE_INSTALL=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	@cmake --build build-fuzz --target tessaline_fuzz -j $(JOBS)
	@mkdir -p fuzz-corpus build-fuzz/crashes
	@build-fuzz/tessaline_fuzz -max_total_time=$(FUZZ_SECONDS) -max_len=65536 -timeout=10 \
	  -rss_limit_mb=4096 -artifact_prefix=build-fuzz/crashes/ -dict=tests/fuzz/svg.dict $(FUZZ_FLAGS) \
	  fuzz-corpus tests/fuzz/seeds tests/data

# Benchmarks, from a Release build of their own in build-bench. `make bench` prints Google
# Benchmark's table and, where librsvg2-dev is installed, the side-by-side comparison with
# librsvg; the whole-sprite figures need scripts/fetch-bench-data first. `make bench-check`
# measures the ratios recorded in bench/baseline.json and fails on a regression of more than 25%
# (BENCH_CHECK_FLAGS=--update records new ones). Figures depend on the machine: not part of CI.
# Each Google Benchmark runs BENCH_REPETITIONS times and its median is the figure to read: on a
# shared machine single runs move by a quarter or more.
BENCH_BUILD ?= build-bench
BENCH_REPETITIONS ?= 5
BENCH_SPRITES = bench/data/bootstrap-icons.svg bench/data/tabler-sprite.svg bench/data/fontawesome-solid.svg
BENCH_CHECK_FLAGS ?=
.PHONY: bench bench-build bench-check
bench-build: bootstrap
	@cmake -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=Release -DTESSALINE_BUILD_BENCH=ON \
	  -DTESSALINE_BUILD_TESTS=OFF >/dev/null
	@cmake --build $(BENCH_BUILD) --target tessaline_benchmarks -j $(JOBS)

# The repetitions run interleaved in a random order, so that a slow phase of a shared machine
# falls on every benchmark alike; the rows are sorted by name again for reading.
bench: bench-build
	@$(BENCH_BUILD)/bench/tessaline_bench --benchmark_repetitions=$(BENCH_REPETITIONS) \
	  --benchmark_display_aggregates_only=true --benchmark_enable_random_interleaving=true \
	  > $(BENCH_BUILD)/bench-table.txt
	@awk '/^(BM_|render)/ { print | "LC_ALL=C sort -s -k1,1"; next } !seen[$$0]++' \
	  $(BENCH_BUILD)/bench-table.txt
	@if [ ! -x $(BENCH_BUILD)/bench/compare/tessaline_rsvg_compare ]; then \
	  echo "bench: librsvg2-dev not installed, no side-by-side comparison"; \
	elif [ ! -s bench/data/bootstrap-icons.svg ]; then \
	  echo "bench: bench/data missing, run scripts/fetch-bench-data for the comparison"; \
	else $(BENCH_BUILD)/bench/compare/tessaline_rsvg_compare $(BENCH_SPRITES); fi
	@if [ -s bench/data/bootstrap-icons.svg ]; then \
	  $(BENCH_BUILD)/bench/tessaline_sprite_memory $(BENCH_SPRITES); fi

bench-check: bench-build
	@python3 bench/bench_check.py --build $(BENCH_BUILD) $(BENCH_CHECK_FLAGS)
