# A newcomer types `make run` or `make test`; each installs what is missing first.
#
#   make run     build, then open Zento (without a display: record and render the demo)
#   make test    build, then run every test          make bench   timings as ratios in one run
#   make sync    two minutes of flashes and beeps, recorded: how far apart they end up
#   make sheets  what is drawn, as pictures to be looked at, into build/sheets
#   make screens every screen of the window, dark and light, into build/screens
#   make install what belongs on a system, below PREFIX (/usr/local)       make deb     a Debian package
#   make lint    style, clang-tidy (minutes)         make style   formatting and includes (seconds)
#   make format  rewrite the formatting
#   make asan    tests under address and undefined-behaviour sanitizers
#   make tsan    tests under the thread sanitizer    make fuzz    the fuzzers, FUZZ_SECONDS each
SHELL := /bin/bash
BUILD := build/release
JOBS := $(shell nproc)
FUZZ_SECONDS ?= 60

.PHONY: run test build bench sync sheets screens install deb lint style format asan tsan fuzz clean

run:
	@tools/install-packages.sh build run test
	@tools/build.sh release zento
	@if [ -n "$$DISPLAY$$WAYLAND_DISPLAY" ]; then $(BUILD)/zento; else $(BUILD)/zento demo; fi

build:
	@tools/install-packages.sh build run test
	@tools/build.sh release

test: build
	@cd $(BUILD) && ctest --output-on-failure --no-tests=error -j $(JOBS)

bench: build
	@tools/bench.sh $(BUILD) $(if $(RESULTS),Benchmarks/results.md)

sync: build
	@$(BUILD)/sync_check $(BUILD)/zento

PREFIX ?= /usr/local

install: build
	@cmake --install $(BUILD) --prefix $(PREFIX) --strip >/dev/null && echo "installed below $(DESTDIR)$(PREFIX)"

deb: build
	@cd $(BUILD) && cpack -G DEB >/dev/null && ls $(CURDIR)/$(BUILD)/*.deb

sheets:
	@tools/install-packages.sh build run
	@tools/build.sh release contact_sheets
	@$(BUILD)/contact_sheets build/sheets && echo build/sheets

screens:
	@tools/install-packages.sh build run test
	@tools/screens.sh build/screens

style:
	@tools/install-packages.sh lint
	@tools/format.sh -n
	@tools/check-includes.sh

lint: style
	@tools/install-packages.sh build test lint
	@tools/lint.sh

format:
	@tools/install-packages.sh lint
	@tools/format.sh -i

asan tsan:
	@tools/install-packages.sh build run test
	@tools/build.sh $@
	@ctest --preset $@ -j $(JOBS)

fuzz:
	@tools/install-packages.sh build fuzz
	@tools/fuzz.sh $(FUZZ_SECONDS)

clean:
	rm -rf build
