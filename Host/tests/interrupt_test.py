"""Ctrl-C: exit status 130, older files as they were, nothing left behind."""

import os
import signal
import subprocess
import time

from support import QUELIDE, HostTest, Image, main


class InterruptTest(HostTest):
    # Large enough that each stage of a run takes a while.
    sizes = (4096, 4096, 32, 1, 1)

    def setUp(self):
        super().setUp()
        header = Image("uint8", self.sizes, []).header()
        with open(self.path("in.qeli"), "wb") as file:
            file.write(header)
            file.truncate(len(header) + self.sizes[0] * self.sizes[1] * self.sizes[2])
        with open(self.path("out.png"), "wb") as file:
            file.write(b"older")
        with open(self.path("out.tif"), "wb") as file:
            file.write(b"older")

    def start(self, *arguments):
        process = subprocess.Popen([QUELIDE, *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   cwd=self.folder)
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.stderr.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def finish(self, process, status):
        self.assertEqual(status, process.wait(timeout=60))
        self.assertEqual(b"", process.stdout.read())
        for name in ("out.png", "out.tif"):
            with open(self.path(name), "rb") as file:
                self.assertEqual(b"older", file.read())
        self.assertEqual(["in.qeli", "out.png", "out.tif"], self.files())

    def test_while_the_algorithm_runs(self):
        process = self.start("run", "IntensityStatistics", "input=in.qeli", "--threads=1", "--progress", "--json")
        # The bar appears when the input is read and the run begins; it is drawn anew when work has been done.
        self.assertEqual(b"\r[", process.stderr.read(2))
        while process.stderr.read(1) != b"\r":
            pass
        process.send_signal(signal.SIGINT)
        self.finish(process, 130)
        rest = process.stderr.read()
        self.assertNotIn(b"error", rest)
        self.assertNotIn(b"100 %", rest)

    def test_a_background_job_of_a_script_can_be_interrupted(self):
        script = subprocess.Popen(["sh", "-c", '"$0" convert in.qeli out.tif & echo $!; wait $!', QUELIDE],
                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE, cwd=self.folder)
        self.addCleanup(script.stdout.close)
        self.addCleanup(script.stderr.close)
        number = int(script.stdout.readline())
        self.wait_for_temporary_file(script)
        os.kill(number, signal.SIGINT)
        self.finish(script, 130)

    def test_a_run_that_writes_a_file(self):
        process = self.start("run", "BitShift", "input=in.qeli", "shiftCount=1", "output=out.tif", "--threads=1",
                             "--progress")
        self.assertEqual(b"\r[", process.stderr.read(2))
        process.send_signal(signal.SIGINT)
        self.finish(process, 130)

    def test_while_a_file_is_read(self):
        process = self.start("run", "CopyImage", "input=in.qeli", "output=out.tif")
        self.wait_for_open_file(process, "in.qeli")
        process.send_signal(signal.SIGINT)
        self.finish(process, 130)
        self.assertEqual(b"", process.stderr.read())

    def wait_for_open_file(self, process, name):
        folder = "/proc/%d/fd" % process.pid
        while True:
            self.assertIsNone(process.poll())
            try:
                if any(os.readlink(os.path.join(folder, entry)).endswith(name) for entry in os.listdir(folder)):
                    return
            except FileNotFoundError:
                pass  # closed between the two calls
            time.sleep(0.001)

    def wait_for_temporary_file(self, process):
        while not [name for name in self.files() if name.startswith(".")]:
            self.assertIsNone(process.poll())
            time.sleep(0.005)

    def test_while_a_file_is_written(self):
        process = self.start("convert", "in.qeli", "out.tif")
        self.wait_for_temporary_file(process)
        process.send_signal(signal.SIGINT)
        self.finish(process, 130)

    def test_a_second_signal_ends_the_program_at_once(self):
        process = self.start("convert", "in.qeli", "out.tif")
        self.wait_for_temporary_file(process)
        process.send_signal(signal.SIGINT)
        process.send_signal(signal.SIGINT)
        self.finish(process, 130)

    def test_other_signals_that_end_a_program_clean_up_as_well(self):
        for number in (signal.SIGTERM, signal.SIGHUP):
            process = self.start("convert", "in.qeli", "out.tif")
            self.wait_for_temporary_file(process)
            process.send_signal(number)
            self.finish(process, 128 + number)


if __name__ == "__main__":
    main()
