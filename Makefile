# Brix: see README.md. Every target installs the Debian packages it needs first.
BUILD_RELEASE := build/release
BUILD_TEST    := build/test
JOBS          ?= $(shell nproc)

.PHONY: all deps build run run-qm test bench format clean package package-check

all: build

deps:
	@scripts/install-deps.sh

$(BUILD_RELEASE)/build.ninja:
	cmake -S . -B $(BUILD_RELEASE) -G Ninja -DCMAKE_BUILD_TYPE=Release -DBRIX_TESTS=OFF -DBRIX_BENCH=ON

build: deps $(BUILD_RELEASE)/build.ninja
	cmake --build $(BUILD_RELEASE) -j $(JOBS)

run: build
	$(BUILD_RELEASE)/brix

# The editor on a private ScarletDME host with the demo account QMDEMO (see README.md).
run-qm: build
	scripts/scarletdme.sh demo $(BUILD_RELEASE) $(BUILD_RELEASE)/brix

$(BUILD_TEST)/build.ninja:
	cmake -S . -B $(BUILD_TEST) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DBRIX_SANITIZE=ON -DBRIX_TESTS=ON

test: deps $(BUILD_TEST)/build.ninja
	cmake --build $(BUILD_TEST) -j $(JOBS)
	scripts/run-tests.sh $(BUILD_TEST)

# A Debian package, built for the prefix /usr in a folder of its own.
BUILD_PACKAGE := build/package
$(BUILD_PACKAGE)/build.ninja:
	cmake -S . -B $(BUILD_PACKAGE) -G Ninja -DCMAKE_BUILD_TYPE=Release -DBRIX_TESTS=OFF \
	  -DCMAKE_INSTALL_PREFIX=/usr

package: deps $(BUILD_PACKAGE)/build.ninja
	cmake --build $(BUILD_PACKAGE) -j $(JOBS)
	cd $(BUILD_PACKAGE) && cpack -G DEB

# lintian on the package: errors fail, warnings are shown.
package-check: package
	lintian --fail-on error --info $(BUILD_PACKAGE)/brix_*.deb

bench: build
	scripts/run-bench.sh $(BUILD_RELEASE)

format:
	find src tests bench -name '*.cpp' -o -name '*.h' | xargs clang-format -i

clean:
	rm -rf build
