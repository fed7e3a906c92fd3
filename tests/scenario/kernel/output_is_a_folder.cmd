run

