"""A stand-in server with the two homes beside it, and how a request of the one is held against the other's."""

import re
import tempfile
import unittest
import xml.etree.ElementTree

import run_case
from stand_in import StandIn

CERTIFICATES = run_case.TOP / "build/certificates"


def comparable_body(body):
    try:
        # The replacement: differences.json, no_namespace.
        return xml.etree.ElementTree.canonicalize(body, strip_text=True).replace(' xmlns=""', "")
    except xml.etree.ElementTree.ParseError:
        return body


def comparable(record):
    """A request as it is compared; differences.json gives the reasons, under the names that stand here."""
    head = record["head"]
    body = record.get("body", record.get("body_sha256", ""))
    if comparable_body(body) != body:  # differences.json, xml_bodies
        head = re.sub(r"(?im)^(Content-Length:) \d+", r"\1 <of XML>", head)
    fields = head.split("\r\n")
    if record["method"] == "CONNECT":  # differences.json, connect_head
        fields = fields[:1]
    elif record["connect_host"]:  # differences.json, length_behind_connect
        fields.sort(key=lambda field: field.lower().startswith("content-length:"))
    elif record.get("role") == "data node":  # differences.json, host_behind_redirect
        fields.sort(key=lambda field: field.startswith("Host:"))
    return {"method": record["method"], "target": record["target"], "host": record["host"],
            "tls": record["tls"], "head": fields, "body": comparable_body(body)}


class BothHomes(unittest.TestCase):
    """A stand-in server and the two homes for a class of tests."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="velandoc-scripts-")
        cls.server = StandIn(run_case.TOP / "build/native/bin/velandoc-standin", CERTIFICATES, cls.folder.name,
                             "--max-seconds", "1200")
        cls.addClassCleanup(cls.stop)
        cls.homes = {name: make(cls.server.ports) for name, make in run_case.HOMES.items()}

    @classmethod
    def stop(cls):
        cls.server.stop()
        cls.folder.cleanup()
