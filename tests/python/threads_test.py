"""Many threads at once."""

import concurrent.futures
import threading
import time

import conftest

import mailstructure

THREADS = 8


def test_eight_threads_parse_at_once():
    messages = [path.read_bytes() for path in conftest.SAMPLES] + list(conftest.HOSTILE.values())
    expected = [mailstructure.parse(message).to_dict() for message in messages]
    barrier = threading.Barrier(THREADS)

    def parse_all(first):
        barrier.wait()
        for turn in range(len(messages) * 3):
            number = (first + turn) % len(messages)
            message = mailstructure.parse(messages[number])
            assert message.to_dict() == expected[number]
            assert len(list(message.walk())) == len(message)
        return True

    with concurrent.futures.ThreadPoolExecutor(THREADS) as pool:
        assert all(pool.map(parse_all, range(THREADS)))


def test_eight_threads_read_one_message(nested):
    message = mailstructure.parse(nested)
    barrier = threading.Barrier(THREADS)

    def read(_):
        barrier.wait()
        names = [entity.section for entity in message]
        return names, bytes(message.section("2.HEADER")), message.root.field("subject").decoded

    with concurrent.futures.ThreadPoolExecutor(THREADS) as pool:
        results = list(pool.map(read, range(THREADS)))
    assert results == [results[0]] * THREADS
    assert results[0][0] == ["TEXT", "1", "2", "2.1"]


class Counter(threading.Thread):
    """Counts while another thread parses. Without the lock of the interpreter it cannot."""

    def __init__(self):
        super().__init__(daemon=True)
        self.count = 0
        self.is_over = False

    def run(self):
        while not self.is_over:
            self.count += 1
            time.sleep(0)


def counts_during(call):
    """How far another thread counts while the call runs."""
    counter = Counter()
    counter.start()
    while counter.count == 0:
        time.sleep(0.001)
    before = counter.count
    call()
    counted = counter.count - before
    counter.is_over = True
    counter.join()
    return counted


def test_other_threads_run_while_a_message_is_parsed():
    # Handing over the lock once takes five milliseconds at most, and this parse takes longer.
    message = b"Content-Type: multipart/mixed; boundary=b\n\n" + b"--b\na: b\n\nx\n" * 300_000
    assert counts_during(lambda: mailstructure.parse(message)) > 100
    parser = mailstructure.Parser()
    assert counts_during(lambda: parser.feed(message)) > 100


def test_a_parser_is_for_one_thread_at_a_time():
    message = b"Content-Type: multipart/mixed; boundary=b\n\n" + b"--b\na: b\n\nx\n" * 300_000
    parser = mailstructure.Parser()
    refusals = []
    feeds = threading.Event()

    def intrude():
        """Calls the parser while the other thread is inside, which takes tens of milliseconds."""
        feeds.wait()
        for _ in range(10):
            time.sleep(0.002)
            try:
                parser.feed(b"")
            except RuntimeError as error:
                refusals.append(str(error))

    intruder = threading.Thread(target=intrude)
    intruder.start()
    feeds.set()
    parser.feed(message)
    intruder.join()
    assert refusals
    assert set(refusals) == {"another thread is using the parser"}
    assert len(parser.finish()) == 300_001
