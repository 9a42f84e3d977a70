"""decode_alerts.py MODULES FEED ROUTE...: the line of a status bar from a GTFS-Realtime file, as short as with Python.

MODULES is the folder of the module that protoc has made. whole_process_bench compares it with `linewatch status`.
"""
import sys

sys.path.insert(0, sys.argv[1])
import alerts_pb2  # noqa: E402

message = alerts_pb2.FeedMessage()
with open(sys.argv[2], "rb") as file:
    message.ParseFromString(file.read())
wanted = set(sys.argv[3:])
affected = {selector.route_id for entity in message.entity if entity.HasField("alert")
            for selector in entity.alert.informed_entity if selector.route_id in wanted}
print(f"{len(affected)} lines with advisories" if affected else "Good Service")
