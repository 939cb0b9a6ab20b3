# The door. Everything is built under build/ by the CMake presets; results go to out/.
.PHONY: help demo test bench bench-pair check harden test-arm format install package
.DEFAULT_GOAL := help

JOBS ?= $(shell nproc)
PREFIX ?= /usr/local

help:
	@echo 'make demo      denoise the sample picture, show the figures, write out/demo/*.png'
	@echo 'make test      build and run the tests on this machine'
	@echo 'make bench     benchmarks as a table; BENCH_ARGS=--benchmark_filter=... chooses'
	@echo 'make bench-pair OLD=COMMIT   frames of this tree and of an older one, in turn'
	@echo 'make check     every check (scripts/check.sh runs single ones)'
	@echo 'make harden    what docs/reliability.md tells (2.5 to 3 hours on two cores); HARDEN=short: minutes'
	@echo 'make test-arm  build for 64-bit Arm and run the tests in emulation'
	@echo 'make format    lay out the sources with clang-format'
	@echo 'make package   Debian packages, archive and bill of materials in out/packages'
	@echo 'make install   library, headers, command and tuning files to PREFIX (/usr/local)'

demo: build-host
	scripts/demo.sh build/host

test: build-host
	ctest --preset host --parallel $(JOBS)

bench: build-host
	build/host/bench/vorel_bench $(BENCH_ARGS)

bench-pair: build-host
	@test -n '$(OLD)' || { echo 'make bench-pair OLD=COMMIT [BENCH_ARGS=...]'; exit 1; }
	scripts/bench_pair.sh '$(OLD)' $(BENCH_ARGS)

check:
	scripts/setup.sh build check page arm
	scripts/check.sh all

harden:
	scripts/setup.sh build check arm package harden
	scripts/harden.sh

test-arm:
	scripts/setup.sh build arm
	cmake --preset aarch64
	cmake --build --preset aarch64
	ctest --preset aarch64 --parallel $(JOBS)
	ctest --preset aarch64-a76 --parallel $(JOBS)

format:
	scripts/setup.sh check
	git ls-files -z -- '*.h' '*.c' '*.cpp' | xargs -0 clang-format-19 -i

package:
	scripts/package.sh

install: build-host
	cmake --install build/host --prefix $(DESTDIR)$(PREFIX)

.PHONY: build-host
build-host:
	scripts/setup.sh build
	cmake --preset host
	cmake --build --preset host
