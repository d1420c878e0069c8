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
else
BUILD_DIR := build
CMAKE_FLAGS :=
endif

.PHONY: all run test bench clean packages configure install package

all: configure
	cmake --build $(BUILD_DIR) $(JOBS) --target vexil

# The build's output goes to standard error: standard output is the program's alone.
run:
	@$(MAKE) --no-print-directory all >&2
	@./$(BUILD_DIR)/vexil $(ARGS)

test: configure
	cmake --build $(BUILD_DIR) $(JOBS)
	cd $(BUILD_DIR) && $(TEST_ENV) ctest --output-on-failure

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
	rm -rf build build-sanitize build-release build-web

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
