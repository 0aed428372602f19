"""The server refuses malformed uploads and says why."""
import base64
import gzip
import http.client
import json
import ssl

from programs import EndToEndTest

HEADERS = {"Content-Type": "application/jose+json", "Content-Encoding": "gzip",
           "Request-Send-Timestamp": "1763689123", "Mobile-UUID": ""}
GOOD = {"array": [{"LOGIN": {"userId": "u1"}}]}


def document(payload, signatures=()):
    encoded = base64.urlsafe_b64encode(json.dumps(payload).encode()).rstrip(b"=").decode()
    return {"payload": encoded, "signatures": list(signatures)}


def packed(value):
    return gzip.compress(json.dumps(value).encode())


class Uploads(EndToEndTest):
    def setUp(self):
        super().setUp()
        self.server = self.start_server()
        context = ssl.create_default_context(cafile=self.place.pki / "tls-ca.pem")
        self.connection = http.client.HTTPSConnection("localhost", self.server.port, timeout=10, context=context)
        self.addCleanup(self.connection.close)

    def post(self, body, path="/stat", method="POST", **changes):
        headers = {**HEADERS, **{name.replace("_", "-"): value for name, value in changes.items()}}
        self.connection.request(method, path, body,
                                {name: value for name, value in headers.items() if value is not None})
        answer = self.connection.getresponse()
        return answer.status, json.loads(answer.read()), answer.headers

    def test_a_good_upload_is_kept_as_it_came(self):
        status, _, headers = self.post(packed(document(GOOD)))
        self.assertEqual(status, 200)
        self.assertRegex(headers["Date"], r"^[A-Z][a-z]{2}, \d\d [A-Z][a-z]{2} \d{4} \d\d:\d\d:\d\d GMT$")
        (entry,) = self.server.events()
        self.assertEqual(entry["eventType"], "LOGIN")
        self.assertEqual(entry["event"], GOOD["array"][0])
        self.assertEqual(entry["bytes"], len(packed(document(GOOD))))
        self.assertEqual(list(entry), ["time", "path", "headers", "bytes", "eventType", "event"])

    def test_malformed_bodies_get_400_and_a_reason_and_are_reported(self):
        whole = packed(document(GOOD))
        bodies = {
            "nothing": b"", "text": b"text", "cut": whole[:-1], "more": whole + b"x",
            "no JSON": gzip.compress(b"{"), "no object": packed([]), "no payload": packed({"signatures": []}),
            "no signatures": packed({"payload": "e30"}), "signed": packed(document(GOOD, [{}])),
            "padded": packed({"payload": "e30=", "signatures": []}),
            "payload no JSON": packed({"payload": "eA", "signatures": []}),
            "no array": packed(document({})), "no event": packed(document({"array": []})),
            "two events": packed(document({"array": [{"A": {}}, {"B": {}}]})),
            "event no object": packed(document({"array": [{"A": 1}]})),
        }
        for name, body in bodies.items():
            with self.subTest(name):
                status, answer, _ = self.post(body)
                self.assertEqual(status, 400)
                self.assertIn(f"malformed upload: {answer['error']}", self.server.log())
        self.assertEqual(self.server.events(), [])

    def test_wrong_headers_get_400(self):
        body = packed(document(GOOD))
        for changes in ({"Content_Type": "application/json"}, {"Content_Encoding": None},
                        {"Request_Send_Timestamp": "soon"}, {"Request_Send_Timestamp": None},
                        {"Mobile_UUID": None}):
            with self.subTest(changes):
                status, answer, _ = self.post(body, **changes)
                self.assertEqual(status, 400)
                self.assertIn("header ", answer["error"])
        self.assertEqual(self.server.events(), [])

    def test_other_places_are_refused(self):
        self.assertEqual(self.post(b"", path="/config/v1")[0], 404)
        self.assertEqual(self.post(b"", path="/ocsp")[0], 400)
        self.assertEqual(self.post(b"", path="/elsewhere")[0], 404)
        self.assertEqual(self.post(b"", method="PUT")[0], 405)

    def test_a_body_over_the_bound_is_refused(self):
        self.assertEqual(self.post(b"x" * (1024 * 1024 + 1))[0], 413)
        self.connection.close()
        self.assertEqual(self.post(packed(document(GOOD)))[0], 200)
