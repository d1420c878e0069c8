# make                  build build/vexil
# make run ARGS="..."   build, then run build/vexil with ARGS
# make test             build everything and run every test
# make test VALGRIND=1  the same, with the end-to-end cases run under valgrind's memcheck: no error, no leak
# make test SANITIZE=1  the same under AddressSanitizer and UndefinedBehaviorSanitizer, in build-sanitize
# make install          install under PREFIX (default /usr/local), into DESTDIR when given
# make package          build a Debian package, build/vexil_VERSION_ARCH.deb
# make web              build the web page in build-web/ (emscripten)
# make serve            build it, then serve it on http://127.0.0.1:8000
# make test-web         build it and run the page's tests in headless Chromium (Playwright)
# make test TSAN=1      every test under ThreadSanitizer, in build-tsan; any report fails
# make coverage         every test on a build with coverage counters, then line and branch coverage per folder
# make fuzz FUZZ_SECONDS=N  each libFuzzer target for N seconds (default 60) under ASan and UBSan, in build-fuzz
# Each target first installs the Debian packages it needs when they are missing (as root).

PACKAGES := cmake g++ make libgtest-dev googletest libpng-dev pkg-config libsdl2-dev libncurses-dev xvfb xauth tmux
# The manual page (help2man) and make package (dpkg-shlibdeps and file, which CPack's .deb needs).
PACKAGES += help2man dpkg-dev file
JOBS := -j2

# Any memcheck error, or any block lost (definitely, indirectly or possibly), fails the case.
ifeq ($(VALGRIND),1)
PACKAGES += valgrind
TEST_ENV := VEXIL_E2E_RUNNER="valgrind -q --error-exitcode=99 --leak-check=full --errors-for-leak-kinds=definite,indirect,possible"
endif

ifeq ($(SANITIZE),1)
BUILD_DIR := build-sanitize
CMAKE_FLAGS := -DVEXIL_SANITIZE=ON -DCMAKE_BUILD_TYPE=Debug
else ifeq ($(TSAN),1)
BUILD_DIR := build-tsan
CMAKE_FLAGS := -DVEXIL_TSAN=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo
else
BUILD_DIR := build
CMAKE_FLAGS :=
endif
# Reports go to files, from the test binaries and from every vexil the scripts start; any one fails.
# A huge array is refused ("Out of memory") as the release build refuses it, not a report.
ifeq ($(TSAN),1)
TEST_ENV := rm -f report.* && TSAN_OPTIONS="suppressions=$(CURDIR)/tests/tsan.supp log_path=$(CURDIR)/build-tsan/report allocator_may_return_null=1"
TEST_CHECK := @if ls build-tsan/report.* >/dev/null 2>&1; then cat build-tsan/report.*; exit 1; fi
endif

.PHONY: all run test bench clean packages configure install package fuzz coverage

all: configure
	cmake --build $(BUILD_DIR) $(JOBS) --target vexil

# The build's output goes to standard error: standard output is the program's alone.
run:
	@$(MAKE) --no-print-directory all >&2
	@./$(BUILD_DIR)/vexil $(ARGS)

test: configure
	cmake --build $(BUILD_DIR) $(JOBS)
	cd $(BUILD_DIR) && $(TEST_ENV) ctest --output-on-failure
	$(TEST_CHECK)

# The binary, the window module and the manual page: what install and package put in place.
PREFIX ?= /usr/local
install: configure
	cmake --build $(BUILD_DIR) $(JOBS) --target vexil vexil_manual
	DESTDIR="$(DESTDIR)" cmake --install $(BUILD_DIR) --prefix "$(PREFIX)"

package: configure
	cmake --build $(BUILD_DIR) $(JOBS) --target vexil vexil_manual
	cd $(BUILD_DIR) && cpack -G DEB

bench: packages
	bash bench/run.sh

clean:
	rm -rf build build-sanitize build-release build-web build-fuzz build-tsan build-coverage

# The web page. Debian's emscripten needs its acorn module from Debian's node path, which the node on
# these machines does not search. Node itself comes with the machine (its npm too); Debian's when missing.
WEB_PACKAGES := emscripten chromium
WEB_ENV := NODE_PATH=/usr/share/nodejs

.PHONY: web serve test-web
web:
	@$(MAKE) --no-print-directory packages PACKAGES="$(WEB_PACKAGES)"
	@command -v npm > /dev/null || $(MAKE) --no-print-directory packages PACKAGES="nodejs npm"
	$(WEB_ENV) emcmake cmake -S . -B build-web --log-level=WARNING > /dev/null
	$(WEB_ENV) cmake --build build-web $(JOBS)

serve: web
	node build-web/serve.mjs 8000

# Playwright drives Debian's chromium: the npm package never downloads a browser of its own.
test-web: web
	cd tests/web && PLAYWRIGHT_SKIP_BROWSER_DOWNLOAD=1 npm ci --no-audit --no-fund --loglevel=error
	cd tests/web && node --test

# clang with its libFuzzer runtime; the engine alone, instrumented, and the three targets.
FUZZ_SECONDS := 60
fuzz: PACKAGES += clang libclang-rt-14-dev
fuzz: packages
	cmake -S . -B build-fuzz -DVEXIL_FUZZ=ON -DVEXIL_SANITIZE=ON -DCMAKE_CXX_COMPILER=clang++ \
	  -DCMAKE_BUILD_TYPE=RelWithDebInfo --log-level=WARNING
	cmake --build build-fuzz $(JOBS)
	bash fuzz/run.sh build-fuzz $(FUZZ_SECONDS)

# Unoptimised, so every line and branch counts where the source has it; counts start from zero each time.
# The figures are printed even when a test fails, and the target fails after them.
coverage: PACKAGES += gcovr
coverage: packages
	cmake -S . -B build-coverage -DVEXIL_COVERAGE=ON -DCMAKE_BUILD_TYPE=Debug --log-level=WARNING
	cmake --build build-coverage $(JOBS)
	find build-coverage -name '*.gcda' -delete
	cd build-coverage && ctest --output-on-failure; status=$$?; cd .. && bash tests/coverage.sh build-coverage && exit $$status

configure: packages
	cmake -S . -B $(BUILD_DIR) $(CMAKE_FLAGS) --log-level=WARNING

# dpkg-query says what is installed; apt-get update runs only when something is missing.
packages:
	@missing=""; \
	for package in $(PACKAGES); do \
	  dpkg-query -W -f='$${Status}' $$package 2>/dev/null | grep -q "ok installed" || missing="$$missing $$package"; \
	done; \
	if [ -n "$$missing" ]; then \
	  echo "Installing:$$missing"; \
	  sudo=""; [ "$$(id -u)" -eq 0 ] || sudo=sudo; \
	  export DEBIAN_FRONTEND=noninteractive; \
	  $$sudo apt-get update -qq && \
	  $$sudo apt-get install -y -qq --no-install-recommends -o Dpkg::Use-Pty=0 $$missing >/dev/null; \
	fi
