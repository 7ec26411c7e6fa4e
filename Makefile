# The entry points: make run | make test | make bench. Each installs what is
# missing, configures with Ninja into build/, builds, then does its job.
BUILD ?= build
CMAKE_FLAGS ?= -DCMAKE_BUILD_TYPE=Release
EXAMPLE ?= examples/expr.tkg

.PHONY: all deps configure build run test bench bench-explain bench-gui screenshot clean

all: build

deps:
	@bash scripts/install-deps.sh

$(BUILD)/build.ninja: | deps
	cmake -S . -B $(BUILD) -G Ninja $(CMAKE_FLAGS)

configure: deps $(BUILD)/build.ninja

build: configure
	cmake --build $(BUILD)

run: build
	@if [ -n "$$DISPLAY" ] || [ -n "$$WAYLAND_DISPLAY" ] || [ -n "$$QT_QPA_PLATFORM" ]; then \
	  ./$(BUILD)/bin/trelk $(EXAMPLE); \
	else \
	  echo "No display is available, so the workbench cannot open a window."; \
	  echo "This is what 'trelk-cli check $(EXAMPLE)' says:"; \
	  ./$(BUILD)/bin/trelk-cli check $(EXAMPLE); \
	fi

test: build
	cd $(BUILD) && ctest --output-on-failure -j2 --timeout 300

bench: build
	./$(BUILD)/bin/trelk-bench
	python3 bench/compare.py --cli $(BUILD)/bin/trelk-cli

# Conflict explanations against bison -Wcex on the corpus (the peer runs up to
# 15 minutes on a grammar; the whole run takes about 40).
bench-explain: build
	python3 bench/explain_compare.py --cli $(BUILD)/bin/trelk-cli

# The main window offscreen on the large corpus grammars: Analyse-to-shown per view.
bench-gui: build
	./$(BUILD)/bin/trelk-gui-bench

# Pictures of the window and the dialogs for the manual, under a virtual X server.
# The grammar is copied first: a run saves its grammar (and companion) as the window does.
SHOT_GRAMMAR ?= $(firstword $(wildcard ../shared/corpus/calc.tkg) examples/expr.tkg)
screenshot: build
	rm -f $(BUILD)/screenshot.ini
	cp $(SHOT_GRAMMAR) $(BUILD)/screenshot.tkg
	xvfb-run -a -s "-screen 0 1280x1024x24" ./$(BUILD)/bin/trelk --ini $(BUILD)/screenshot.ini \
	  --screenshot docs/screenshots $(BUILD)/screenshot.tkg
	mv docs/screenshots/automaton.png docs/automaton.png

clean:
	rm -rf $(BUILD)
