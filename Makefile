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

test: build
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

# The same suite with AddressSanitizer and UndefinedBehaviorSanitizer.
test-asan:
	@$(MAKE) --no-print-directory test BUILD=build-asan CMAKE_FLAGS="-DTESSALINE_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug $(CMAKE_FLAGS)"

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	@rm -rf $(BUILD) build-asan
