# Mosswick: `make run` starts it, `make test` runs every test. Both install what is missing first.
BUILD      ?= build
ASAN_BUILD ?= build-asan
FUZZ_BUILD ?= build-fuzz
JOBS       ?= $(shell nproc)
FUZZ_SECONDS ?= 20
CMAKE_GEN  := -G Ninja

SOURCES = $(shell git ls-files -- 'src/*.cpp' 'src/*.h' 'tests/*.cpp' 'tests/*.h' 'tools/*.cpp' 'tools/*.h' 'bench/*.cpp' 'fuzz/*.cpp' 2>/dev/null)

PREFIX     ?= /usr/local
DESTDIR    ?=
PACKAGES   ?= build-packages
VERSION    := $(shell awk '/^project/ {print $$3; exit}' CMakeLists.txt)

.PHONY: install deb dist package-test
.PHONY: all deps configure build run test unit-test sanitize-test fuzz fuzz-build bench format format-check clean

all: build

deps:
	@bash tools/install-deps.sh

# The tested tree is what packagers build (Release: -O3, whose extra warnings -Werror then
# catches), with debug information for the tests' backtraces.
configure: deps
	@cmake -S . -B $(BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS=-g -DMOSSWICK_WERROR=ON >/dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

run: build
	@bash tools/run.sh $(BUILD)

# Everything: formatting, the whole suite (unit, desktop, crash), the unit tests again under
# AddressSanitizer + UndefinedBehaviorSanitizer, then each fuzzer for a bounded time.
test: format-check build
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS) --timeout 300
	@$(MAKE) --no-print-directory sanitize-test
	@$(MAKE) --no-print-directory fuzz

unit-test: build
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS) -L unit

sanitize-test: deps
	@cmake -S . -B $(ASAN_BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=Debug -DMOSSWICK_SANITIZE=ON -DMOSSWICK_WERROR=ON -DMOSSWICK_BUILD_APP=OFF >/dev/null
	@cmake --build $(ASAN_BUILD) -j $(JOBS)
	@cd $(ASAN_BUILD) && ASAN_OPTIONS=detect_leaks=0 UBSAN_OPTIONS=print_stacktrace=1 \
		ctest --output-on-failure -j $(JOBS) -L unit

fuzz-build: deps
	@CC=clang CXX=clang++ cmake -S . -B $(FUZZ_BUILD) $(CMAKE_GEN) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DMOSSWICK_WERROR=ON -DMOSSWICK_FUZZ=ON >/dev/null
	@cmake --build $(FUZZ_BUILD) -j $(JOBS)

fuzz: fuzz-build
	@bash tools/run-fuzzers.sh $(FUZZ_BUILD) $(FUZZ_SECONDS)

bench: build
	@bash tools/bench.sh $(BUILD)

format:
	@clang-format -i $(SOURCES)

format-check: deps
	@clang-format --dry-run --Werror $(SOURCES)

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(FUZZ_BUILD)

# The binary, desktop entry, icons, metainfo, manual page and completions under $(PREFIX), staged
# under $(DESTDIR) when given.
install: build
	@DESTDIR=$(DESTDIR) cmake --install $(BUILD) --prefix $(PREFIX)

# A Debian package built by Debian's tools with Debian's flags, from the tracked files, in
# $(PACKAGES)/ (dpkg-buildpackage writes next to the source folder).
deb: deps
	@rm -rf $(PACKAGES)/deb && mkdir -p $(PACKAGES)/deb/mosswick-$(VERSION)
	@git ls-files -z | xargs -0 tar -c | tar -x -C $(PACKAGES)/deb/mosswick-$(VERSION)
	@cd $(PACKAGES)/deb/mosswick-$(VERSION) && dpkg-buildpackage -us -uc -b
	@ls -l $(PACKAGES)/deb/*.deb

# A self-contained archive that installs into the home folder without root (install.sh inside).
dist: build
	@bash tools/make-dist.sh $(BUILD) $(PACKAGES) $(VERSION)

# Builds the package and the archive, and checks what they install (not part of `make test`: the
# package is built from scratch with Debian's flags, which takes longer than the rest of CI's budget allows).
package-test: deb dist
	@bash tools/package-test.sh $(PACKAGES) $(VERSION)
