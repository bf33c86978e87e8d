# SPDX-License-Identifier: GPL-3.0-or-later
# Quick start: `make run` starts the program, `make test` runs every test. Both install what is missing first.
BUILD      ?= build
BUILD_TYPE ?= Release
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
# The folder `make run` lists until the window exists; override with `make run FOLDER=/some/where`.
FOLDER     ?= $(HOME)

.PHONY: all deps configure build run test test-asan bench install format format-check clean

all: build

deps:
	@./scripts/setup-deps.sh

$(BUILD)/build.ninja:
	cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=$(BUILD_TYPE)

configure: deps $(BUILD)/build.ninja

build: configure
	cmake --build $(BUILD) -j $(JOBS)

run: build
	@if [ -x $(BUILD)/bin/quillary ]; then $(BUILD)/bin/quillary; \
	else $(BUILD)/bin/quillary-list --out $(BUILD)/listings --yes "$(FOLDER)"; fi

test: build
	cd $(BUILD) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

# The core and its tests under AddressSanitizer and UndefinedBehaviorSanitizer.
test-asan: deps
	cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DQUILLARY_SANITIZE=ON \
		-DQUILLARY_WIDGETS=OFF
	cmake --build build-asan -j $(JOBS)
	cd build-asan && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 ctest --output-on-failure -j $(JOBS)

bench: configure
	@./scripts/setup-deps.sh --bench
	cmake --build $(BUILD) -j $(JOBS) --target benchmarks
	./bench/run.sh

install: build
	cmake --install $(BUILD)

# One pinned clang-format (Debian 12's), so the check gives the same answer on every machine.
CLANG_FORMAT ?= clang-format-14

format:
	$(CLANG_FORMAT) -i $$(git ls-files '*.cpp' '*.h')

format-check: deps
	$(CLANG_FORMAT) --dry-run --Werror $$(git ls-files '*.cpp' '*.h')

clean:
	rm -rf $(BUILD) build-asan
