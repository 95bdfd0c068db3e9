"""A Slurm cluster of two nodes on this machine, with a controller and munge of its own.

All files are in one folder and all ports are free ones, so that a Slurm that the machine may be
part of is not touched. Nothing is left when the cluster ends; its daemons end also if the test is
killed.
"""

import ctypes
import getpass
import os
import pathlib
import shutil
import signal
import socket
import subprocess
import time

PROGRAMS = ("munged", "sbatch", "scancel", "scontrol", "sinfo", "slurmctld", "slurmd", "squeue")
LIBC = ctypes.CDLL(None)
PR_SET_PDEATHSIG, PR_SET_CHILD_SUBREAPER = 1, 36

CONFIGURATION = """\
ClusterName=loopback
SlurmctldHost={host}(127.0.0.1)
SlurmUser={user}
SlurmdUser={user}
AuthType=auth/munge
AuthInfo=socket={folder}/munge/socket
CredType=cred/munge
SlurmctldPort={ports[0]}
SlurmctldPidFile={folder}/slurmctld.pid
SlurmdPidFile={folder}/%n.pid
SlurmctldLogFile={folder}/slurmctld.log
SlurmdLogFile={folder}/%n.log
StateSaveLocation={folder}/state
SlurmdSpoolDir={folder}/%n
SlurmdParameters=config_overrides
MpiDefault=none
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
JobCompType=jobcomp/none
SwitchType=switch/none
MailProg=/bin/true
KillWait=2
SchedulerParameters=sched_min_interval=0,sched_interval=1,bf_interval=1,batch_sched_delay=0
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
ReturnToService=2
NodeName=n1 NodeHostname={host} NodeAddr=127.0.0.1 Port={ports[1]} CPUs=1 State=UNKNOWN
NodeName=n2 NodeHostname={host} NodeAddr=127.0.0.1 Port={ports[2]} CPUs=1 State=UNKNOWN
PartitionName=main Nodes=n1,n2 Default=YES MaxTime=INFINITE State=UP
"""


def why_not():
    """Why there can be no such cluster here; None if there can."""
    os.environ["PATH"] += ":/usr/sbin"
    for program in PROGRAMS:
        if not shutil.which(program):
            return f"there is no {program}"
    return None if os.geteuid() == 0 else "only root can run slurmd"


def free_ports(count):
    """Ports that nothing listens at."""
    sockets = [socket.socket() for _ in range(count)]
    for each in sockets:
        each.bind(("127.0.0.1", 0))
    ports = [each.getsockname()[1] for each in sockets]
    for each in sockets:
        each.close()
    return ports


def wait_until(what, condition, seconds=60):
    """The first true value of the condition."""
    end = time.monotonic() + seconds
    while not (value := condition()):
        if time.monotonic() > end:
            raise TimeoutError(what)
        time.sleep(0.1)
    return value


def children():
    """The processes whose parent this one is."""
    tasks = pathlib.Path(f"/proc/self/task/{os.getpid()}/children")
    return [int(number) for number in tasks.read_text().split()]


def end_all_children():
    """Kills what the cluster has started, until nothing of it is left."""
    def kill():
        for process in children():
            os.kill(process, signal.SIGKILL)
            os.waitpid(process, 0)
        return not children() # what they have left behind now has this process as its parent
    wait_until("processes are left", kill)


class Cluster:
    """Runs from its creation until close()."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.daemons = []
        # What a daemon leaves behind becomes a child of this process.
        LIBC.prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
        for name in ("munge", "state", "n1", "n2"):
            (self.folder / name).mkdir(mode=0o755)
        text = CONFIGURATION.format(folder=self.folder, user=getpass.getuser(),
                                    host=socket.gethostname().split(".")[0], ports=free_ports(3))
        configuration = self.folder / "slurm.conf"
        configuration.write_text(text)
        os.environ["SLURM_CONF"] = str(configuration)
        try:
            self.start_munge()
            self.start("slurmctld", "-D", "-i")
            self.start("slurmd", "-D", "-N", "n1")
            self.start("slurmd", "-D", "-N", "n2")
            wait_until("the nodes do not become idle", self.is_idle)
        except BaseException:
            self.show_logs()
            end_all_children()
            raise

    def start_munge(self):
        """Without munge, no program of Slurm trusts another."""
        munge = self.folder / "munge"
        key = munge / "key"
        key.write_bytes(os.urandom(1024))
        key.chmod(0o400)
        self.start("munged", "--foreground", "--force", f"--key-file={key}",
                   f"--socket={munge}/socket", f"--pid-file={munge}/pid",
                   f"--log-file={munge}/log", f"--seed-file={munge}/seed")
        wait_until("munge does not answer", (munge / "socket").exists)

    def start(self, *command):
        """A daemon in the foreground, which ends when this process ends."""
        with open(self.folder / "output", "ab") as output:
            self.daemons.append(subprocess.Popen(
                command, stdin=subprocess.DEVNULL, stdout=output, stderr=output,
                preexec_fn=lambda: LIBC.prctl(PR_SET_PDEATHSIG, signal.SIGTERM)))

    def show_logs(self):
        """For a failure."""
        for log in (*self.folder.glob("*.log"), self.folder / "output"):
            print(f"== {log.name}", log.read_text(errors="replace")[-3000:], sep="\n")

    @staticmethod
    def run(*command):
        """What the program prints; it must succeed."""
        return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout

    def is_idle(self):
        """Whether both nodes wait for work."""
        done = subprocess.run(["sinfo", "-N", "-h", "-o", "%t"], check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        return done.stdout.split() == ["idle", "idle"]

    def jobs(self):
        """The states of all jobs and tasks that have not ended, by their names such as 3_1."""
        lines = self.run("squeue", "-h", "-r", "-a", "-o", "%i %T").splitlines()
        return dict(map(str.split, lines))

    def end_state(self, job):
        """How a job, or a task of an array, has ended."""
        text = self.run("scontrol", "--oneliner", "show", "job", job)
        return next(word for word in text.split() if word.startswith("JobState=")).split("=")[1]

    def start_at_once(self, job):
        """Slurm lets a job that was put back into the queue wait for two minutes. Not this one."""
        wait_until("the task is not put back", lambda: self.jobs().get(job) == "PENDING")
        self.run("scontrol", "update", f"JobId={job}", "StartTime=now")

    def wait_for_all(self, seconds=120):
        """Until no job is left."""
        wait_until("the jobs do not end", lambda: not self.jobs(), seconds)

    def close(self):
        """Ends all jobs and daemons."""
        subprocess.run(["scancel", "--full", "--me"], check=False)
        end_all_children()
        for daemon in self.daemons:
            daemon.returncode = 0 # it has been waited for
