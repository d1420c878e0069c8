# make                  build build/vexil
# make run ARGS="..."   build, then run build/vexil with ARGS
# make test             build everything and run every test
# make test VALGRIND=1  the same, with the end-to-end cases run under valgrind's memcheck: no error, no leak
# make test SANITIZE=1  the same under AddressSanitizer and UndefinedBehaviorSanitizer, in build-sanitize
# Each target first installs the Debian packages it needs when they are missing (as root).

PACKAGES := cmake g++ make libgtest-dev googletest libpng-dev pkg-config libsdl2-dev libncurses-dev xvfb xauth tmux
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

.PHONY: all run test bench clean packages configure

all: configure
	cmake --build $(BUILD_DIR) $(JOBS) --target vexil

# The build's output goes to standard error: standard output is the program's alone.
run:
	@$(MAKE) --no-print-directory all >&2
	@./$(BUILD_DIR)/vexil $(ARGS)

test: configure
	cmake --build $(BUILD_DIR) $(JOBS)
	cd $(BUILD_DIR) && $(TEST_ENV) ctest --output-on-failure

bench: packages
	bash bench/run.sh

clean:
	rm -rf build build-sanitize build-release

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
