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
